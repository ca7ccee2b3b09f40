#include "PanelInput.h"

#include <SDL.h>

#include <algorithm>
#include <cctype>
#include <string>

namespace flarebox::openglgame {
namespace {

constexpr int mouse = 0;
constexpr CGFloat pointsPerNotch = 40;

CGPoint mousePoint() {
    int x = 0, y = 0;
    SDL_GetMouseState(&x, &y);
    return {static_cast<CGFloat>(x), static_cast<CGFloat>(y)};
}

InputResult handleMotion(UIHost& panel, const SDL_MouseMotionEvent& motion) {
    const CGPoint point{static_cast<CGFloat>(motion.x), static_cast<CGFloat>(motion.y)};
    const bool isPressed = (motion.state & SDL_BUTTON_LMASK) != 0;
    return isPressed ? panel.pointerMoved(mouse, point) : panel.pointerHovered(point);
}

InputResult handleButton(UIHost& panel, const SDL_MouseButtonEvent& button) {
    if (button.button != SDL_BUTTON_LEFT) return InputResult::Ignored;
    const CGPoint point{static_cast<CGFloat>(button.x), static_cast<CGFloat>(button.y)};
    return button.state == SDL_PRESSED ? panel.pointerDown(mouse, point) : panel.pointerUp(mouse, point);
}

InputResult handleKey(UIHost& panel, const SDL_KeyboardEvent& key) {
    if (key.repeat != 0) return InputResult::Ignored;
    std::string name = SDL_GetKeyName(key.keysym.sym);
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return panel.keyDown(name);
}

}  // namespace

CGSize sizeOf(SDL_Window* window) {
    int width = 0, height = 0;
    SDL_GetWindowSize(window, &width, &height);
    return {static_cast<CGFloat>(width), static_cast<CGFloat>(height)};
}

CGFloat scaleOf(SDL_Window* window) {
    int width = 0;
    SDL_GL_GetDrawableSize(window, &width, nullptr);
    return width / sizeOf(window).width;
}

InputResult handleEvent(UIHost& panel, SDL_Window* window, const SDL_Event& event) {
    switch (event.type) {
        case SDL_MOUSEMOTION:
            return handleMotion(panel, event.motion);
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
            return handleButton(panel, event.button);
        case SDL_MOUSEWHEEL:
            return panel.scrolled(mousePoint(), event.wheel.preciseX * pointsPerNotch,
                                  -event.wheel.preciseY * pointsPerNotch);
        case SDL_KEYDOWN:
            return handleKey(panel, event.key);
        case SDL_WINDOWEVENT:
            if (event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED) panel.resize(sizeOf(window), scaleOf(window));
            if (event.window.event == SDL_WINDOWEVENT_FOCUS_LOST) panel.pointerCancelled(mouse);
            if (event.window.event == SDL_WINDOWEVENT_LEAVE) panel.pointerLeft();
            return InputResult::Ignored;
        default:
            return InputResult::Ignored;
    }
}

}  // namespace flarebox::openglgame
