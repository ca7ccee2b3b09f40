#pragma once

#include "DeveloperTools.h"
#include "Screen.h"
#include "Surroundings.h"

#include <Flarebox/Views/FlareboxView.h>
#include <UIKit/UIWindow.h>

#include <functional>
#include <string>
#include <vector>

namespace flarebox::hostgame {

/// The game with the kit in it, frame by frame. Main thread.
class Game {
public:
    Game(const Options& options, Surroundings& surroundings, Screen& screen);
    ~Game();
    Game(const Game&) = delete;
    Game& operator=(const Game&) = delete;

    /// Configures the kit, makes the tab and attaches it. Answers what went wrong; empty when nothing did.
    std::string start();

    Screen& screen() { return screen_; }
    Surroundings& surroundings() { return surroundings_; }
    World& world() { return world_; }
    DeveloperTools& tools() { return tools_; }
    /// The tab made last.
    FlareboxView& tab() { return *tabs_.back(); }
    /// The application's window, or null.
    UIWindow* window() const;
    /// Makes another tab; false when the kit's resources are missing. The earlier ones stay.
    bool makeTab();

    /// Lets that many seconds of the clock in force pass, frame by frame.
    void pass(double seconds);
    /// Runs frames for at most `seconds` real ones until the condition holds; false when it does not. A virtual clock
    /// stands still.
    bool await(const std::function<bool()>& condition, double seconds);
    /// One frame, for input to take effect.
    void frame();
    bool savePicture(const std::string& path);
    /// The player has closed the window.
    bool isClosed() const { return isClosed_; }
    /// Goes on until the player closes the window.
    void play();

private:
    enum class Moving { Yes, No };
    void runFrame(Moving moving);
    void keepPace();

    const Options& options_;
    Surroundings& surroundings_;
    Screen& screen_;
    World world_;
    std::vector<Ref<FlareboxView>> tabs_;
    DeveloperTools tools_;
    bool isClosed_ = false;
    /// Real moments: of the next frame, and of the world's last step.
    double nextFrame_ = 0, lastStep_ = 0;
};

}  // namespace flarebox::hostgame
