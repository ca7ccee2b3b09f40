#include <Foundation/Clock.h>
#include <Foundation/LogSink.h>
#include <Foundation/MainQueue.h>
#include <Foundation/Shutdown.h>
#include <UIKit/CADisplayLink.h>
#include <UIKit/LayerRenderer.h>
#include <UIKit/TouchDispatcher.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIDevice.h>
#include <UIKit/UIFocusSystem.h>
#include <UIKit/UIHost.h>
#include <UIKit/UIScreen.h>
#include <UIKit/UIWindow.h>
#include <UIKit/ViewAnimations.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <optional>
#include <utility>

namespace flarebox {

namespace {

/// The one host that is in force. Other threads may ask whether there is one.
std::atomic<UIHost*> currentHost = nullptr;

/// Landscape-left or portrait for the shape of the window. A window that changes its size and keeps its shape is turned
/// by half: what follows the orientation would not notice the new size otherwise.
UIDeviceOrientation orientationAfter(UIDeviceOrientation previous, CGSize size) {
    using enum UIDeviceOrientation;
    if (size.width >= size.height) return previous == LandscapeLeft ? LandscapeRight : LandscapeLeft;
    return previous == Portrait ? PortraitUpsideDown : Portrait;
}

constexpr CGFloat largestInterfaceScale = 3;

CGFloat usableScale(CGFloat scale) {
    return scale > 0 ? std::min(scale, UIHost::largestScale) : 1;
}

/// What is left of the size at a usable scale.
CGSize usableSize(CGSize size, CGFloat scale) {
    const auto usable = [most = UIHost::longestSide / scale](CGFloat side) {
        return side > 0 ? std::min(side, most) : 0;
    };
    return {usable(size.width), usable(size.height)};
}

std::optional<UIPressType> pressNamed(std::string_view key) {
    using enum UIPressType;
    static constexpr std::pair<std::string_view, UIPressType> presses[] = {
        {"up", UpArrow},    {"down", DownArrow},      {"left", LeftArrow}, {"right", RightArrow},
        {"return", Select}, {"keypad enter", Select}, {"space", Select},   {"escape", Menu},
        {"pageup", PageUp}, {"pagedown", PageDown},
    };
    const auto found = std::ranges::find(presses, key, &std::pair<std::string_view, UIPressType>::first);
    return found == std::end(presses) ? std::nullopt : std::optional(found->second);
}

InputResult resultOf(bool isUsed) {
    return isUsed ? InputResult::Consumed : InputResult::Ignored;
}

/// Gives a key to whoever it is for.
InputResult resultOfKey(UIWindow& window, std::string_view name) {
    UIFocusSystem& focus = window.focusSystem();
    const auto press = pressNamed(name);
    // What a controller does with a key of its own counts as long as nobody sees a ring.
    if (press && focus.showsRing()) return resultOf(focus.press(*press));
    if (window.keyDown(name)) return InputResult::Consumed;
    if (press) return resultOf(focus.press(*press));
    const bool isBackwards = name == "backtab";
    if (isBackwards || name == "tab") return resultOf(focus.focusNext(isBackwards));
    return resultOf(!window.presentedViewControllers().empty());
}

void tellSafeAreaChanged(UIView& view) {
    view.safeAreaInsetsDidChange();
    const std::vector<Ref<UIView>> below(view.subviews().begin(), view.subviews().end());
    for (const auto& subview : below) tellSafeAreaChanged(*subview);
}

}  // namespace

/// The application around one window, as long as the host lives; longer where the host goes inside one of its own
/// calls.
struct UIHost::State : UIApplicationDelegate {
    ~State() override {
        mainWindow = nullptr;
        // Views that went with the window may have left work behind.
        MainQueue::shared().removeAll();
    }
    UIWindow* window() override { return mainWindow.get(); }

    Ref<UIWindow> mainWindow = make<UIWindow>();
    LayerRenderer renderer{*mainWindow};
    TouchDispatcher touches{*mainWindow};
    std::function<void(const InputEvent&, InputResult)> observeInput;
    // As the host counts.
    CGSize screenSize;
    CGFloat screenScale = 1;
    UIEdgeInsets safeAreaInsets;
    /// Calls under way, one inside the other.
    int depth = 0;
    /// Owns itself once the host is gone, until the outermost call ends.
    std::unique_ptr<State> own;
};

/// One call of the host, which is a part of its turn.
class UIHost::Call {
public:
    Call(const UIHost& host, const char* name, const char* part)
        : state_(requireMainThread(name) ? host.state_.get() : nullptr), part_(state_ ? part : nullptr) {
        if (state_) ++state_->depth;
    }
    ~Call() {
        if (state_ && --state_->depth == 0) std::exchange(state_->own, nullptr);
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /// False where the call has to do nothing, or no more.
    explicit operator bool() const { return state_ && !state_->own; }
    /// Made by something that another call runs.
    bool isNested() const { return state_->depth > 1; }
    State* operator->() const { return state_; }

    /// Passes the result of an event on to who observes the input.
    InputResult tell(const InputEvent& event, InputResult result) const {
        // A copy: the observer may take itself off.
        const auto observe = *this ? state_->observeInput : nullptr;
        if (observe) observe(event, result);
        return result;
    }

private:
    State* const state_;
    TurnMeter::Part part_;
};

UIHost* UIHost::current() {
    return currentHost;
}

UIHost::UIHost(CGSize screenSize, CGFloat scale) {
    if (currentHost) {
        LogSink::write(LogLevelError, "A host adapter was made while there is another one: it will do nothing");
        return;
    }
    claimMainThread();
    currentHost = this;
    state_ = std::make_unique<State>();
    setScreen(screenSize, scale);
    state_->mainWindow->setRootViewController(make<UIViewController>());
    UIApplication::sharedApplication().setDelegate(state_.get());
}

UIHost::~UIHost() {
    if (!state_) return;
    if (!requireMainThread("The end of the host adapter, which")) claimMainThread();
    Shutdown::run();
    ViewAnimations::removeAll();
    UIApplication& application = UIApplication::sharedApplication();
    if (application.delegate() == state_.get()) application.setDelegate(nullptr);
    UIDevice::currentDevice().orientation_ = UIDeviceOrientation::Unknown;
    UIScreen& screen = UIScreen::mainScreen();
    screen.interfaceScale_ = 1;
    screen.safeAreaInsets_ = {};
    UIAccessibilitySetReduceMotion(false);
    currentHost = nullptr;
    State& state = *state_;
    if (state.depth > 0) state.own = std::move(state_);
}

void UIHost::setScreen(CGSize size, CGFloat scale) {
    const Call call(*this, "UIHost::setScreen", "input");
    if (!call) return;
    call->screenScale = usableScale(scale);
    call->screenSize = usableSize(size, call->screenScale);
    applyScreen();
}

void UIHost::applyScreen() {
    UIScreen& screen = UIScreen::mainScreen();
    const CGFloat larger = screen.interfaceScale_;
    const CGSize size = state_->screenSize;
    screen.bounds_ = {{}, {size.width / larger, size.height / larger}};
    screen.scale_ = state_->screenScale * larger;
    const auto inset = [larger](CGFloat own) { return std::max(0.0, own / larger); };
    const UIEdgeInsets& own = state_->safeAreaInsets;
    screen.safeAreaInsets_ = {inset(own.top), inset(own.left), inset(own.bottom), inset(own.right)};
    state_->mainWindow->setFrame(screen.bounds_);
}

CGPoint UIHost::scaled(CGPoint point) {
    const CGFloat larger = UIScreen::mainScreen().interfaceScale();
    return {point.x / larger, point.y / larger};
}

void UIHost::setInterfaceScale(CGFloat scale) {
    const Call call(*this, "UIHost::setInterfaceScale", "input");
    if (!call) return;
    CGFloat& current = UIScreen::mainScreen().interfaceScale_;
    const CGFloat wanted = scale > 1 ? std::min(scale, largestInterfaceScale) : 1;
    if (std::exchange(current, wanted) == wanted) return;
    applyScreen();
    tellSafeAreaChanged(*call->mainWindow);
}

void UIHost::setSafeAreaInsets(const UIEdgeInsets& insets) {
    const Call call(*this, "UIHost::setSafeAreaInsets", "input");
    const bool isFinite = std::isfinite(insets.top + insets.left + insets.bottom + insets.right);
    if (!call || !isFinite || std::exchange(call->safeAreaInsets, insets) == insets) return;
    applyScreen();
    tellSafeAreaChanged(*call->mainWindow);
}

void UIHost::setReduceMotion(bool reduce) {
    const Call call(*this, "UIHost::setReduceMotion", "input");
    if (call) UIAccessibilitySetReduceMotion(reduce);
}

void UIHost::setOrientation(UIDeviceOrientation orientation) {
    const Call call(*this, "UIHost::setOrientation", "input");
    if (call) UIDevice::currentDevice().setOrientation(orientation);
}

void UIHost::resize(CGSize size, CGFloat scale) {
    const Call call(*this, "UIHost::resize", "input");
    if (!call) return;
    UIDevice& device = UIDevice::currentDevice();
    const UIDeviceOrientation former = device.orientation();
    const CGSize formerSize = call->screenSize;
    const CGFloat formerScale = call->screenScale;
    setScreen(size, scale);
    const bool isSame = call->screenSize == formerSize && call->screenScale == formerScale;
    if (isSame && former != UIDeviceOrientation::Unknown) return;
    device.setOrientation(orientationAfter(former, call->screenSize));
}

InputResult UIHost::pointerDown(int pointer, CGPoint point) {
    const Call call(*this, "UIHost::pointerDown", "input");
    if (!call) return InputResult::Ignored;
    UIFocusSystem& focus = call->mainWindow->focusSystem();
    focus.hideRing();
    const InputResult result = call->touches.down(pointer, scaled(point));
    if (result == InputResult::Ignored) focus.giveBack();
    return call.tell({InputEvent::Kind::PointerDown, pointer, point}, result);
}
InputResult UIHost::pointerMoved(int pointer, CGPoint point) {
    const Call call(*this, "UIHost::pointerMoved", "input");
    if (!call) return InputResult::Ignored;
    return call.tell({InputEvent::Kind::PointerMoved, pointer, point}, call->touches.moved(pointer, scaled(point)));
}
InputResult UIHost::pointerUp(int pointer, CGPoint point) {
    const Call call(*this, "UIHost::pointerUp", "input");
    if (!call) return InputResult::Ignored;
    return call.tell({InputEvent::Kind::PointerUp, pointer, point}, call->touches.up(pointer, scaled(point)));
}
void UIHost::pointerCancelled(int pointer) {
    const Call call(*this, "UIHost::pointerCancelled", "input");
    if (!call) return;
    call->touches.cancelled(pointer);
    call.tell({InputEvent::Kind::PointerCancelled, pointer}, InputResult::Ignored);
}
InputResult UIHost::pointerHovered(CGPoint point) {
    const Call call(*this, "UIHost::pointerHovered", "input");
    if (!call) return InputResult::Ignored;
    call->mainWindow->focusSystem().hideRing();
    return call->touches.hovered(scaled(point));
}
void UIHost::pointerLeft() {
    const Call call(*this, "UIHost::pointerLeft", "input");
    if (call) call->touches.left();
}
InputResult UIHost::scrolled(CGPoint point, CGFloat dx, CGFloat dy) {
    const Call call(*this, "UIHost::scrolled", "input");
    if (!call) return InputResult::Ignored;
    call->mainWindow->focusSystem().hideRing();
    const CGPoint way = scaled({dx, dy});
    return call.tell({InputEvent::Kind::Scrolled, 0, point, dx, dy},
                     call->touches.scrolled(scaled(point), way.x, way.y));
}
InputResult UIHost::keyDown(std::string_view name) {
    const Call call(*this, "UIHost::keyDown", "input");
    if (!call) return InputResult::Ignored;
    return call.tell({.kind = InputEvent::Kind::KeyDown, .key = name}, resultOfKey(*call->mainWindow, name));
}
void UIHost::setInputObserver(std::function<void(const InputEvent&, InputResult)> observe) {
    const Call call(*this, "UIHost::setInputObserver", nullptr);
    if (call) call->observeInput = std::move(observe);
}

void UIHost::takeFocus() {
    const Call call(*this, "UIHost::takeFocus", "input");
    if (!call) return;
    call->mainWindow->focusSystem().take();
    call.tell({.kind = InputEvent::Kind::FocusTaken}, InputResult::Ignored);
}
void UIHost::giveBackFocus() {
    const Call call(*this, "UIHost::giveBackFocus", "input");
    if (!call) return;
    call->mainWindow->focusSystem().giveBack();
    call.tell({.kind = InputEvent::Kind::FocusGivenBack}, InputResult::Ignored);
}
bool UIHost::hasFocus() const {
    const Call call(*this, "UIHost::hasFocus", nullptr);
    return call && call->mainWindow->focusSystem().takesPresses();
}
bool UIHost::showsFocusRing() const {
    const Call call(*this, "UIHost::showsFocusRing", nullptr);
    return call && call->mainWindow->focusSystem().takesPresses() && call->mainWindow->focusSystem().showsRing();
}
InputResult UIHost::press(UIPressType type) {
    const Call call(*this, "UIHost::press", "input");
    if (!call) return InputResult::Ignored;
    const InputResult result = resultOf(call->mainWindow->focusSystem().press(type));
    return call.tell({.kind = InputEvent::Kind::Pressed, .press = type}, result);
}
InputResult UIHost::stickMoved(CGPoint deflection) {
    const Call call(*this, "UIHost::stickMoved", "input");
    return resultOf(call && call->mainWindow->focusSystem().stickMoved(deflection));
}

std::vector<UIAccessibilityElement> UIHost::accessibilityElements() {
    const Call call(*this, "UIHost::accessibilityElements", "input");
    return call ? accessibilityElementsOf(*call->mainWindow) : std::vector<UIAccessibilityElement>();
}

bool UIHost::accessibilityActivate(UIView& element) {
    const Call call(*this, "UIHost::accessibilityActivate", "input");
    const Ref<UIView> kept(&element);
    const auto point = call && element.window() == call->mainWindow.get() ? uncoveredPointOf(element) : std::nullopt;
    if (!point) return false;
    if (element.accessibilityActivate()) return true;
    // A finger of its own, which the game has not.
    constexpr int finger = -1;
    if (call->touches.down(finger, *point) == InputResult::Ignored) return false;
    call->touches.up(finger, *point);
    return true;
}

bool UIHost::accessibilityAdjust(UIView& element, int steps) {
    const Call call(*this, "UIHost::accessibilityAdjust", "input");
    const Ref<UIView> kept(&element);
    const bool isInReach = call && element.window() == call->mainWindow.get() && uncoveredPointOf(element);
    return isInReach && element.accessibilityAdjust(steps);
}

void UIHost::update(double budget) {
    const Call call(*this, "UIHost::update", "update");
    if (!call || call.isNested()) return;
    MainQueue::shared().run(budget);
    const double now = Clock::current().uptime();
    if (call) {
        TurnMeter::Part part("display links");
        CADisplayLink::runFrame(now);
    }
    if (call) {
        TurnMeter::Part part("animations");
        ViewAnimations::tick(now);
    }
    if (call) {
        TurnMeter::Part part("layout");
        call->mainWindow->raisePresented();
        call->mainWindow->layoutIfNeeded();
    }
    if (call) {
        TurnMeter::Part part("focus");
        call->mainWindow->focusSystem().update(now);
    }
    // What is under a still pointer changes only together with the picture.
    TurnMeter::Part part("hovering");
    if (call && call->renderer.needsDisplay()) call->touches.refreshHover();
}

void UIHost::setTurnBudget(double seconds) {
    if (requireMainThread("UIHost::setTurnBudget")) TurnMeter::shared().setBudget(seconds);
}

const TurnMeter::Turn& UIHost::longestTurn() const {
    return TurnMeter::shared().longestTurn();
}

void UIHost::resetLongestTurn() {
    if (requireMainThread("UIHost::resetLongestTurn")) TurnMeter::shared().resetLongestTurn();
}

bool UIHost::needsDisplay() const {
    const Call call(*this, "UIHost::needsDisplay", nullptr);
    return call && call->renderer.needsDisplay();
}

void UIHost::draw(Compositor& compositor) {
    const Call call(*this, "UIHost::draw", "drawing");
    if (call && !call.isNested()) call->renderer.draw(compositor, UIScreen::mainScreen().scale());
}

void UIHost::releaseTextures(Compositor& compositor) {
    const Call call(*this, "UIHost::releaseTextures", nullptr);
    if (call) call->renderer.releaseTextures(compositor);
}

}  // namespace flarebox
