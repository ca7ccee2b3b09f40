#pragma once

#include "ContentFrames.h"
#include "Game.h"
#include "Gestures.h"
#include "Script.h"

#include <map>

namespace flarebox::hostgame {

/// Performs scripts. A command that fails ends its script and is reported on standard error with its line.
class Runner {
public:
    explicit Runner(Game& game) : game_(game) {}

    /// Checks every command's form before the first is performed. False when one was wrong, or failed.
    bool run(const Script& script);
    /// What a picture without a script shows: the open tab with its first list, or with the reason why there is none.
    void showFirstList();

private:
    using Words = std::vector<std::string>;
    struct CommandKind;
    static const CommandKind* kindOf(const Command& command);
    Failure perform(const Command& command);

    Failure wait(const Words& words);
    Failure await(const Words& words);
    Failure awaitIdle(const Words& words);
    Failure awaitText(const Words& words);
    Failure awaitVisibility(const Words& words);
    Failure awaitFrame(const Words& words);
    Failure tapOn(const Words& words);
    Failure tapCell(const Words& words);
    Failure swipeOver(const Words& words);
    Failure dragAlong(const Words& words);
    Failure scrollAt(const Words& words);
    Failure pinchOn(const Words& words);
    Failure pressKey(const Words& words);
    Failure pressButton(const Words& words);
    Failure setNetwork(const Words& words);
    Failure setTracking(const Words& words);
    Failure setService(const Words& words);
    Failure setOrientation(const Words& words);
    Failure call(const Words& words);
    Failure savePicture(const Words& words);
    Failure saveDump(const Words& words);

    Failure withView(const std::string& field, const std::function<Failure(UIView&)>& action);
    bool isShown(const std::string& field);

    Game& game_;
    /// Of the script; empty for the working directory.
    std::string folder_;
    /// What each field showed when its last awaited frame had come.
    std::map<std::string, ContentFrames, std::less<>> seenFrames_;
};

}  // namespace flarebox::hostgame
