#pragma once

#include <Foundation/MainQueue.h>
#include <UIKit/UIHost.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>

union SDL_Event;

namespace flarebox {

/// Game controllers as SDL reports them, as presses for the panel: each by itself, so that one that trembles on a table
/// does not disturb the one in the player's hands. Main thread.
class SDLControllers {
public:
    /// The host has to outlive it.
    explicit SDLControllers(UIHost& host) : host_(host) {}
    ~SDLControllers();
    SDLControllers(const SDLControllers&) = delete;
    SDLControllers& operator=(const SDLControllers&) = delete;

    /// Of a button or an axis, or that a controller went.
    InputResult handleEvent(const SDL_Event& event);
    /// Nothing is held any more that was: the window is no longer the player's.
    void letGo();

private:
    /// SDL's identifier of one that is connected.
    using Identifier = std::int32_t;
    struct Controller {
        /// What went down on the panel: its end belongs to the panel as well.
        std::set<int> panelButtons;
        /// Sideways and down: which way the left stick is held, if off its middle.
        std::optional<UIPressType> leftStick[2];
        CGPoint rightStick;
    };
    /// A direction that goes on until it is let go.
    struct Held {
        Identifier controller;
        UIPressType direction;
        bool operator==(const Held&) const = default;
    };

    InputResult buttonMoved(const SDL_Event& event);
    InputResult axisMoved(const SDL_Event& event);
    InputResult leftStickMoved(Identifier identifier, int axis, double deflection);
    InputResult rightStickMoved(Identifier identifier, CGPoint deflection);
    void remove(Identifier identifier);
    InputResult hold(const Held& held);
    void letGo(const Held& held);
    void pressAgainAfter(double seconds);
    void pressAgain();

    UIHost& host_;
    std::map<Identifier, Controller> controllers_;
    std::optional<Held> held_;
    MainQueue::Token nextPress_ = 0;
};

}  // namespace flarebox
