#pragma once

#include "Options.h"
#include "Scene/World.h"

#include <UIKit/UIHost.h>

#include <memory>
#include <optional>
#include <string>

namespace flarebox::hostgame {

/// Where the game is seen and where its input comes from.
class Screen {
public:
    virtual ~Screen() = default;

    /// The adapter through which the kit is driven.
    virtual UIHost& host() = 0;
    /// In points.
    virtual CGSize size() const = 0;
    virtual void resize(CGSize size) = 0;
    /// Gives input to the panel first and what it leaves to the game. False once the player has closed the window.
    virtual bool handleInput(World& world) = 0;
    /// Whether each frame is drawn and real time passes while it is seen.
    virtual bool isWatched() const = 0;
    /// Where the mouse is, or a finger touched last, in points; nothing beside the window.
    virtual std::optional<CGPoint> pointer() const { return std::nullopt; }
    /// Whether F12 was pressed since the last call.
    virtual bool takeDeveloperKey() { return false; }
    /// Whether the key or the button for the panel was pressed since the last call, and the panel left it to the game.
    virtual bool takePanelKey() { return false; }
    /// Draws the game, and the panel over it; answers the seconds that the panel took.
    virtual double draw(const World& world) = 0;
    /// Draws the panel alone, unseen, as what it shows may go on only while it is looked at.
    virtual void drawPanel() = 0;
    /// Draws, and writes what is seen as a PNG file; false when that fails.
    virtual bool savePicture(const World& world, const std::string& path) = 0;
};

/// Null, with the reason in `error`, when there is no display.
std::unique_ptr<Screen> makeWindowScreen(const Options& options, std::string& error);
std::unique_ptr<Screen> makeHeadlessScreen(const Options& options);

}  // namespace flarebox::hostgame
