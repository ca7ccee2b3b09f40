#include "SDLControllers.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace flarebox {
namespace {

/// How far a stick counts as pressed in a direction, and as let go again.
constexpr double stickPressed = 0.6, stickReleased = 0.35;

/// Seconds from the press of a direction that is held to the second, and between those that follow.
constexpr double repetitionDelay = 0.45, repetitionInterval = 0.12;

std::optional<UIPressType> pressOf(Uint8 button) {
    using enum UIPressType;
    switch (button) {
        case SDL_CONTROLLER_BUTTON_DPAD_UP:
            return UpArrow;
        case SDL_CONTROLLER_BUTTON_DPAD_DOWN:
            return DownArrow;
        case SDL_CONTROLLER_BUTTON_DPAD_LEFT:
            return LeftArrow;
        case SDL_CONTROLLER_BUTTON_DPAD_RIGHT:
            return RightArrow;
        case SDL_CONTROLLER_BUTTON_A:
            return Select;
        case SDL_CONTROLLER_BUTTON_B:
            return Menu;
        case SDL_CONTROLLER_BUTTON_X:
            return PlayPause;
        case SDL_CONTROLLER_BUTTON_LEFTSHOULDER:
            return PageUp;
        case SDL_CONTROLLER_BUTTON_RIGHTSHOULDER:
            return PageDown;
        default:
            return std::nullopt;
    }
}

bool isDirection(UIPressType type) {
    return type <= UIPressType::RightArrow;
}

double deflectionOf(Sint16 value) {
    return std::max(-1.0, value / 32767.0);
}

}  // namespace

SDLControllers::~SDLControllers() {
    MainQueue::shared().cancel(nextPress_);
}

InputResult SDLControllers::handleEvent(const SDL_Event& event) {
    if (event.type == SDL_CONTROLLERAXISMOTION) return axisMoved(event);
    if (event.type != SDL_CONTROLLERDEVICEREMOVED) return buttonMoved(event);
    remove(event.cdevice.which);
    return InputResult::Ignored;
}

InputResult SDLControllers::buttonMoved(const SDL_Event& event) {
    const Identifier identifier = event.cbutton.which;
    std::set<int>& panelButtons = controllers_[identifier].panelButtons;
    const int button = event.cbutton.button;
    const auto type = pressOf(event.cbutton.button);
    if (event.type == SDL_CONTROLLERBUTTONUP) {
        if (type) letGo({identifier, *type});
        return panelButtons.erase(button) > 0 ? InputResult::Consumed : InputResult::Ignored;
    }
    if (!type) return InputResult::Ignored;
    const InputResult result = isDirection(*type) ? hold({identifier, *type}) : host_.press(*type);
    if (result == InputResult::Consumed) panelButtons.insert(button);
    return result;
}

InputResult SDLControllers::axisMoved(const SDL_Event& event) {
    const Identifier identifier = event.caxis.which;
    const double deflection = deflectionOf(event.caxis.value);
    const CGPoint rightStick = controllers_[identifier].rightStick;
    switch (event.caxis.axis) {
        case SDL_CONTROLLER_AXIS_LEFTX:
            return leftStickMoved(identifier, 0, deflection);
        case SDL_CONTROLLER_AXIS_LEFTY:
            return leftStickMoved(identifier, 1, deflection);
        case SDL_CONTROLLER_AXIS_RIGHTX:
            return rightStickMoved(identifier, {deflection, rightStick.y});
        case SDL_CONTROLLER_AXIS_RIGHTY:
            return rightStickMoved(identifier, {rightStick.x, deflection});
        default:
            return InputResult::Ignored;
    }
}

InputResult SDLControllers::leftStickMoved(Identifier identifier, int axis, double deflection) {
    using enum UIPressType;
    constexpr UIPressType backwards[] = {LeftArrow, UpArrow}, forwards[] = {RightArrow, DownArrow};
    std::optional<UIPressType>& held = controllers_[identifier].leftStick[axis];
    const UIPressType direction = (deflection > 0 ? forwards : backwards)[axis];
    if (held && (std::abs(deflection) < stickReleased || held != direction))
        letGo({identifier, *std::exchange(held, std::nullopt)});
    if (held || std::abs(deflection) <= stickPressed)
        return host_.hasFocus() ? InputResult::Consumed : InputResult::Ignored;
    held = direction;
    return hold({identifier, direction});
}

InputResult SDLControllers::rightStickMoved(Identifier identifier, CGPoint deflection) {
    controllers_[identifier].rightStick = deflection;
    // The one that is farthest out, where several are held.
    CGPoint farthest;
    for (const auto& [other, controller] : controllers_) {
        const CGPoint stick = controller.rightStick;
        if (std::hypot(stick.x, stick.y) > std::hypot(farthest.x, farthest.y)) farthest = stick;
    }
    return host_.stickMoved(farthest);
}

void SDLControllers::remove(Identifier identifier) {
    if (held_ && held_->controller == identifier) letGo(*held_);
    if (controllers_.contains(identifier)) rightStickMoved(identifier, {});
    controllers_.erase(identifier);
}

void SDLControllers::letGo() {
    if (held_) letGo(*held_);
    for (auto& [identifier, controller] : controllers_) controller.rightStick = {};
    host_.stickMoved({});
}

/// Presses the direction now, and goes on if the panel used it.
InputResult SDLControllers::hold(const Held& held) {
    if (held_) letGo(*held_);
    const InputResult result = host_.press(held.direction);
    if (result != InputResult::Consumed) return result;
    held_ = held;
    pressAgainAfter(repetitionDelay);
    return result;
}

void SDLControllers::letGo(const Held& held) {
    if (held_ != held) return;
    held_.reset();
    MainQueue::shared().cancel(nextPress_);
}

void SDLControllers::pressAgainAfter(double seconds) {
    nextPress_ = MainQueue::shared().after(seconds, [this] { pressAgain(); });
}

void SDLControllers::pressAgain() {
    // The mouse or a finger has taken over, or the game.
    if (!host_.showsFocusRing()) return held_.reset();
    pressAgainAfter(repetitionInterval);
    // Last of all: the game may end its host for it.
    host_.press(held_->direction);
}

}  // namespace flarebox
