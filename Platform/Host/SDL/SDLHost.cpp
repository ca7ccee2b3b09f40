#include "SDLHost.h"

#include <Foundation/LogSink.h>
#include <Host/SDL/SDLControllers.h>
#include <SDL.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string>
#include <utility>

namespace flarebox {
namespace {

constexpr int mousePointer = 0;
/// Points that the content moves by for one notch of a wheel.
constexpr CGFloat wheelStep = 40;

CGSize sizeOf(SDL_Window* window) {
    int width = 0, height = 0;
    SDL_GetWindowSize(window, &width, &height);
    return {static_cast<CGFloat>(std::max(width, 1)), static_cast<CGFloat>(std::max(height, 1))};
}

/// Pixels of the window, also while the game draws into a texture.
CGSize pixelSizeOf(SDL_Renderer* renderer) {
    SDL_Texture* target = SDL_GetRenderTarget(renderer);
    if (target) SDL_SetRenderTarget(renderer, nullptr);
    int width = 0, height = 0;
    SDL_GetRendererOutputSize(renderer, &width, &height);
    if (target) SDL_SetRenderTarget(renderer, target);
    return {static_cast<CGFloat>(width), static_cast<CGFloat>(height)};
}

CGFloat scaleOf(SDL_Window* window, SDL_Renderer* renderer) {
    const CGFloat scale = pixelSizeOf(renderer).width / sizeOf(window).width;
    return scale > 0 ? scale : 1;
}

bool isMouseFromTouch(const SDL_Event& event) {
    switch (event.type) {
        case SDL_MOUSEMOTION:
            return event.motion.which == SDL_TOUCH_MOUSEID;
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
            return event.button.which == SDL_TOUCH_MOUSEID;
        default:
            return false;
    }
}

std::string keyName(SDL_Keycode key) {
    std::string name = SDL_GetKeyName(key);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return name;
}

/// Whether holding the key down does something again and again.
bool repeats(std::string_view key) {
    return key == "left" || key == "right" || key == "up" || key == "down";
}

}  // namespace

SDLHost::SDLHost(SDL_Window* window, SDL_Renderer* renderer)
    : UIHost(sizeOf(window), scaleOf(window, renderer)),
      window_(window),
      renderer_(renderer),
      compositor_(renderer),
      controllers_(std::make_unique<SDLControllers>(*this)) {
    if (!window || !renderer)
        LogSink::write(LogLevelError, "SDLHost: without a window and a renderer nothing is shown");
    followWindow();
}

SDLHost::~SDLHost() {
    releaseTextures(compositor_);
}

void SDLHost::draw() {
    UIHost::draw(compositor_);
}

InputResult SDLHost::handleEvent(const SDL_Event& event) {
    if (isForeign(event)) return InputResult::Ignored;
    switch (event.type) {
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
            return handleMouseButton(event);
        case SDL_MOUSEMOTION:
            return handleMouseMotion(event);
        case SDL_MOUSEWHEEL:
            return handleWheel(event);
        case SDL_FINGERDOWN:
        case SDL_FINGERUP:
        case SDL_FINGERMOTION:
            return handleFinger(event);
        case SDL_KEYDOWN:
        case SDL_KEYUP:
            return handleKey(event);
        case SDL_CONTROLLERBUTTONDOWN:
        case SDL_CONTROLLERBUTTONUP:
        case SDL_CONTROLLERAXISMOTION:
        case SDL_CONTROLLERDEVICEREMOVED:
            return controllers_->handleEvent(event);
        case SDL_WINDOWEVENT:
            handleWindow(event);
            return InputResult::Ignored;
        case SDL_RENDER_TARGETS_RESET:
        case SDL_RENDER_DEVICE_RESET:
            // The pixels are gone; the panel uploads them anew at its next drawing.
            releaseTextures(compositor_);
            return InputResult::Ignored;
        default:
            return InputResult::Ignored;
    }
}

bool SDLHost::isForeign(const SDL_Event& event) const {
    const Uint32 own = SDL_GetWindowID(window_);
    switch (event.type) {
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
            return event.button.windowID != own;
        case SDL_MOUSEMOTION:
            return event.motion.windowID != own;
        case SDL_MOUSEWHEEL:
            return event.wheel.windowID != own;
        case SDL_KEYDOWN:
        case SDL_KEYUP:
            return event.key.windowID != own;
        case SDL_WINDOWEVENT:
            return event.window.windowID != own;
        case SDL_FINGERDOWN:
        case SDL_FINGERUP:
        case SDL_FINGERMOTION:
            // Some systems do not tell the window of a finger.
            return event.tfinger.windowID != 0 && event.tfinger.windowID != own;
        default:
            return false;
    }
}

InputResult SDLHost::handleMouseButton(const SDL_Event& event) {
    mouse_ = pointFromEvent(static_cast<float>(event.button.x), static_cast<float>(event.button.y));
    const bool isDown = event.type == SDL_MOUSEBUTTONDOWN;
    if (event.button.button == SDL_BUTTON_LEFT) {
        if (isDown) isMouseFromTouch_ = isMouseFromTouch(event);
        return mouseResult_ = isDown ? press(mousePointer, mouse_) : release(mousePointer, mouse_);
    }
    if (!isDown) return panelButtons_.erase(event.button.button) > 0 ? InputResult::Consumed : InputResult::Ignored;
    if (pressed_.contains(mousePointer)) return mouseResult_;
    const InputResult result = pointerHovered(mouse_);
    if (result == InputResult::Consumed) panelButtons_.insert(event.button.button);
    return result;
}

InputResult SDLHost::handleMouseMotion(const SDL_Event& event) {
    mouse_ = pointFromEvent(static_cast<float>(event.motion.x), static_cast<float>(event.motion.y));
    if (pressed_.contains(mousePointer)) return pointerMoved(mousePointer, mouse_);
    return isMouseFromTouch(event) ? InputResult::Ignored : pointerHovered(mouse_);
}

InputResult SDLHost::handleWheel(const SDL_Event& event) {
    // SDL counts a turn away from the player as positive; the content's offset sinks with it.
    return scrolled(mouse_, event.wheel.preciseX * wheelStep, -event.wheel.preciseY * wheelStep);
}

InputResult SDLHost::handleFinger(const SDL_Event& event) {
    if (event.tfinger.touchId == SDL_MOUSE_TOUCHID) return mouseResult_;
    const std::int64_t finger = event.tfinger.fingerId;
    if (event.type == SDL_FINGERDOWN && isMouseFromTouch_) {
        fingers_[finger] = mousePointer;
        isMouseFromTouch_ = false;
        return mouseResult_;
    }
    const CGPoint point = pointFromFinger(event.tfinger.x, event.tfinger.y);
    const int pointer = pointerOf(finger);
    if (event.type == SDL_FINGERUP) fingers_.erase(finger);
    if (pointer == mousePointer) return mouseResult_;
    if (event.type == SDL_FINGERDOWN) return press(pointer, point);
    return event.type == SDL_FINGERUP ? release(pointer, point) : pointerMoved(pointer, point);
}

InputResult SDLHost::handleKey(const SDL_Event& event) {
    const int key = event.key.keysym.scancode;
    if (event.type == SDL_KEYUP) return panelKeys_.erase(key) > 0 ? InputResult::Consumed : InputResult::Ignored;
    std::string name = keyName(event.key.keysym.sym);
    if (name == "tab" && (event.key.keysym.mod & KMOD_SHIFT) != 0) name = "backtab";
    if (event.key.repeat) {
        // A key that is held belongs to whom its press went, whatever has come up or gone meanwhile.
        if (!panelKeys_.contains(key)) return InputResult::Ignored;
        if (repeats(name)) keyDown(name);
        return InputResult::Consumed;
    }
    const InputResult result = keyDown(name);
    if (result == InputResult::Consumed) panelKeys_.insert(key);
    return result;
}

void SDLHost::handleWindow(const SDL_Event& event) {
    switch (event.window.event) {
        case SDL_WINDOWEVENT_SIZE_CHANGED:
        case SDL_WINDOWEVENT_RESIZED:
        case SDL_WINDOWEVENT_DISPLAY_CHANGED:
        case SDL_WINDOWEVENT_SHOWN:
            followWindow();
            break;
        case SDL_WINDOWEVENT_LEAVE:
            if (!pressed_.contains(mousePointer)) pointerLeft();
            break;
        case SDL_WINDOWEVENT_FOCUS_LOST:
        case SDL_WINDOWEVENT_HIDDEN:
        case SDL_WINDOWEVENT_MINIMIZED:
            cancelPointers();
            controllers_->letGo();
            break;
        default:
            break;
    }
}

void SDLHost::followWindow() {
    resize(sizeOf(window_), scaleOf(window_, renderer_));
}

void SDLHost::cancelPointers() {
    for (const int pointer : pressed_) pointerCancelled(pointer);
    pressed_.clear();
    fingers_.clear();
    isMouseFromTouch_ = false;
    mouseResult_ = InputResult::Ignored;
    pointerLeft();
}

InputResult SDLHost::press(int pointer, CGPoint point) {
    pressed_.insert(pointer);
    return pointerDown(pointer, point);
}

InputResult SDLHost::release(int pointer, CGPoint point) {
    if (pressed_.erase(pointer) == 0) return InputResult::Ignored;
    return pointerUp(pointer, point);
}

int SDLHost::pointerOf(std::int64_t finger) {
    const auto known = fingers_.find(finger);
    if (known != fingers_.end()) return known->second;
    int pointer = mousePointer + 1;
    const auto isTaken = [&] {
        return std::any_of(fingers_.begin(), fingers_.end(),
                           [&](const auto& entry) { return entry.second == pointer; });
    };
    while (isTaken()) ++pointer;
    fingers_[finger] = pointer;
    return pointer;
}

// With a logical size SDL rewrites the positions in events into the game's own units.
CGPoint SDLHost::pointFromEvent(float x, float y) const {
    int logicalWidth = 0, logicalHeight = 0;
    SDL_RenderGetLogicalSize(renderer_, &logicalWidth, &logicalHeight);
    if (logicalWidth <= 0 || logicalHeight <= 0) return {x, y};
    int windowX = 0, windowY = 0;
    SDL_RenderLogicalToWindow(renderer_, x, y, &windowX, &windowY);
    return {static_cast<CGFloat>(windowX), static_cast<CGFloat>(windowY)};
}

CGPoint SDLHost::pointFromFinger(float x, float y) const {
    int logicalWidth = 0, logicalHeight = 0;
    SDL_RenderGetLogicalSize(renderer_, &logicalWidth, &logicalHeight);
    if (logicalWidth > 0 && logicalHeight > 0) {
        return pointFromEvent(x * static_cast<float>(logicalWidth), y * static_cast<float>(logicalHeight));
    }
    const CGSize size = sizeOf(window_);
    return {x * size.width, y * size.height};
}

}  // namespace flarebox
