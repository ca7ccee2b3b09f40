#include <Foundation/Clock.h>
#include <Foundation/MainQueue.h>
#include <Foundation/Shutdown.h>
#include <UIKit/CADisplayLink.h>
#include <UIKit/LayerRenderer.h>
#include <UIKit/TouchDispatcher.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIDevice.h>
#include <UIKit/UIHost.h>
#include <UIKit/UIScreen.h>
#include <UIKit/UIWindow.h>
#include <UIKit/ViewAnimations.h>

namespace flarebox {

/// The application around one window, as long as the host lives.
struct UIHost::State : UIApplicationDelegate {
    Ref<UIWindow> mainWindow = make<UIWindow>();
    LayerRenderer renderer{*mainWindow};
    TouchDispatcher touches{*mainWindow};

    UIWindow* window() override { return mainWindow.get(); }
};

UIHost::UIHost(CGSize screenSize, CGFloat scale) : state_(std::make_unique<State>()) {
    setScreen(screenSize, scale);
    state_->mainWindow->setRootViewController(make<UIViewController>());
    UIApplication::sharedApplication().setDelegate(state_.get());
}

UIHost::~UIHost() {
    Shutdown::run();
    ViewAnimations::removeAll();
    UIApplication& application = UIApplication::sharedApplication();
    if (application.delegate() == state_.get()) application.setDelegate(nullptr);
    UIDevice::currentDevice().orientation_ = UIDeviceOrientation::Unknown;
    state_.reset();
    // Views that went with the window may have left work behind.
    MainQueue::shared().removeAll();
}

void UIHost::setScreen(CGSize size, CGFloat scale) {
    UIScreen& screen = UIScreen::mainScreen();
    screen.bounds_ = {{}, size};
    screen.scale_ = scale > 0 ? scale : 1;
    state_->mainWindow->setFrame(screen.bounds_);
}

void UIHost::setOrientation(UIDeviceOrientation orientation) {
    UIDevice::currentDevice().setOrientation(orientation);
}

InputResult UIHost::pointerDown(int pointer, CGPoint point) {
    TurnMeter::Part part("input");
    return state_->touches.down(pointer, point);
}
InputResult UIHost::pointerMoved(int pointer, CGPoint point) {
    TurnMeter::Part part("input");
    return state_->touches.moved(pointer, point);
}
InputResult UIHost::pointerUp(int pointer, CGPoint point) {
    TurnMeter::Part part("input");
    return state_->touches.up(pointer, point);
}
void UIHost::pointerCancelled(int pointer) {
    TurnMeter::Part part("input");
    state_->touches.cancelled(pointer);
}
InputResult UIHost::pointerHovered(CGPoint point) {
    TurnMeter::Part part("input");
    return state_->touches.hovered(point);
}
void UIHost::pointerLeft() {
    TurnMeter::Part part("input");
    state_->touches.left();
}
InputResult UIHost::scrolled(CGPoint point, CGFloat dx, CGFloat dy) {
    TurnMeter::Part part("input");
    return state_->touches.scrolled(point, dx, dy);
}

InputResult UIHost::keyDown(std::string_view name) {
    TurnMeter::Part part("input");
    return state_->mainWindow->keyDown(name) ? InputResult::Consumed : InputResult::Ignored;
}

void UIHost::update(double budget) {
    TurnMeter::Part turn("update");
    MainQueue::shared().run(budget);
    const double now = Clock::current().uptime();
    {
        TurnMeter::Part part("display links");
        CADisplayLink::runFrame(now);
    }
    {
        TurnMeter::Part part("animations");
        ViewAnimations::tick(now);
    }
    {
        TurnMeter::Part part("layout");
        state_->mainWindow->raisePresented();
        state_->mainWindow->layoutIfNeeded();
    }
    // What is under a still pointer changes only together with the picture.
    TurnMeter::Part part("hovering");
    if (needsDisplay()) state_->touches.refreshHover();
}

void UIHost::setTurnBudget(double seconds) {
    TurnMeter::shared().setBudget(seconds);
}

const TurnMeter::Turn& UIHost::longestTurn() const {
    return TurnMeter::shared().longestTurn();
}

void UIHost::resetLongestTurn() {
    TurnMeter::shared().resetLongestTurn();
}

bool UIHost::needsDisplay() const {
    return state_->renderer.needsDisplay();
}

void UIHost::draw(Compositor& compositor) {
    TurnMeter::Part part("drawing");
    state_->renderer.draw(compositor, UIScreen::mainScreen().scale());
}

void UIHost::releaseTextures(Compositor& compositor) {
    state_->renderer.releaseTextures(compositor);
}

}  // namespace flarebox
