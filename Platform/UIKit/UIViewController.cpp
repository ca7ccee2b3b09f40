#include <Foundation/MainQueue.h>
#include <UIKit/UIViewController.h>
#include <UIKit/UIWindow.h>

#include <utility>

namespace flarebox {
namespace {

constexpr double fadeDuration = 0.15;

/// Fades the view, or not; `then` runs on the main queue afterwards.
void fade(UIView& view, CGFloat from, CGFloat to, bool animated, std::function<void()> then) {
    if (!animated) {
        view.setAlpha(to);
        dispatch_async_main(std::move(then));
        return;
    }
    view.setAlpha(from);
    UIView::animateWithDuration(
        fadeDuration, [&] { view.setAlpha(to); }, [after = std::move(then)](bool) { after(); });
}

}  // namespace

const ClassInfo& UIViewController::staticClass() {
    static const ClassInfo info("UIViewController", &NSObject::staticClass(), createObject<UIViewController>);
    return info;
}

UIViewController::UIViewController() = default;

UIViewController::~UIViewController() {
    if (!presented_) return;
    UIView* shown = presented_->viewIfLoaded();
    if (UIWindow* window = shown ? shown->window() : nullptr) window->removePresented(*presented_);
}

UIView& UIViewController::view() {
    if (!view_) {
        view_ = loadView();
        viewDidLoad();
    }
    return *view_;
}

Ref<UIView> UIViewController::loadView() {
    return make<UIView>();
}

UIWindow* UIViewController::window() const {
    if (UIWindow* window = view_ ? view_->window() : nullptr) return window;
    const Ref<UIViewController> parent = parent_.lock();
    return parent ? parent->window() : nullptr;
}

void UIViewController::presentViewController(const Ref<UIViewController>& controller, bool animated,
                                             std::function<void()> completion) {
    UIWindow* window = this->window();
    if (!window || !controller || presented_ || controller->window()) return;
    presented_ = controller;
    controller->presenting_ = Weak<UIViewController>(this);
    controller->viewWillAppear(animated);
    window->addPresented(controller);
    fade(controller->view(), 0, 1, animated, [controller, animated, after = std::move(completion)] {
        controller->viewDidAppear(animated);
        if (after) after();
    });
}

void UIViewController::dismissViewController(bool animated, std::function<void()> completion) {
    if (presented_) return dismissPresented(animated, std::move(completion));
    if (const Ref<UIViewController> presenting = presenting_.lock()) {
        return presenting->dismissPresented(animated, std::move(completion));
    }
}

void UIViewController::dismissPresented(bool animated, std::function<void()> completion) {
    const Ref<UIViewController> controller = std::exchange(presented_, nullptr);
    controller->presenting_ = nullptr;
    controller->isBeingDismissed_ = true;
    controller->viewWillDisappear(animated);
    // It stays on top of the window until it has faded, so that a second tap reaches nothing below it.
    fade(controller->view(), 1, 0, animated, [controller, animated, after = std::move(completion)] {
        if (UIWindow* window = controller->window()) window->removePresented(*controller);
        controller->view().setAlpha(1);
        controller->isBeingDismissed_ = false;
        controller->viewDidDisappear(animated);
        if (after) after();
    });
}

void UIViewController::viewWillAppear(bool) {}
void UIViewController::viewDidAppear(bool) {}
void UIViewController::viewWillDisappear(bool) {}
void UIViewController::viewDidDisappear(bool) {}
bool UIViewController::keyDown(std::string_view) {
    return false;
}

}  // namespace flarebox
