#pragma once

#include "Game.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace flarebox::hostgame {

/// Of the player's, from the first finger's touch to its end.
struct RecordedGesture {
    /// The first finger; the mouse is 0.
    int pointer = 0;
    double start = 0;
    /// Nothing was under way by then: what the player waited for had come.
    bool isRested = false;
    CGPoint from, to;
    /// What was touched, as a script names it: a control or an item to tap, a field to swipe over. Empty for none.
    std::string target, field;
    /// The distance of a second finger, when it came and now.
    std::optional<CGFloat> firstSpread, spread;
};
/// Turns of the wheel that follow each other.
struct RecordedScrolling {
    CGPoint point;
    CGFloat dx = 0, dy = 0;
    double last = 0;
};

/// Writes what the player does to the panel as commands of a script, each as soon as it is over. What the game gets is
/// left out. Main thread.
class Recorder {
public:
    /// Null when the file cannot be written. The game has to outlive the recorder.
    static std::unique_ptr<Recorder> start(Game& game, const std::string& path);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    using File = std::unique_ptr<std::FILE, Close>;

    Recorder(Game& game, File file);
    void note(const InputEvent& event, InputResult result);
    void begin(const InputEvent& event);
    void follow(const InputEvent& event);
    void end();
    void addScrolling(const InputEvent& event);
    void endScrolling();
    /// Writes the time since the last command.
    void writePause(double start, bool isRested);
    void write(const std::string& command);
    void writeAfterPause(const std::string& command);

    Game& game_;
    File file_;
    std::optional<RecordedGesture> gesture_;
    std::optional<RecordedScrolling> scrolling_;
    /// When the last command was over.
    double lastEnd_;
};

}  // namespace flarebox::hostgame
