#include <UIKit/UIControl.h>
#include <UIKit/UIFocusSystem.h>
#include <UIKit/UIScreen.h>
#include <UIKit/UITouch.h>
#include <UIKit/UIWindow.h>

#include <algorithm>
#include <ranges>

namespace flarebox {
namespace {

/// Whether a touch on the view is meant for it, and not for the game's picture that shows through.
bool takesTouches(const UIView& view) {
    if (!view.gestureRecognizers().empty() || dynamic_cast<const UIControl*>(&view)) return true;
    return !view.backgroundColor().isClear() || view.drawsContent() || view.layer().borderWidth() > 0;
}

}  // namespace

const ClassInfo& UIWindow::staticClass() {
    static const ClassInfo info("UIWindow", &UIView::staticClass(), createObject<UIWindow>);
    return info;
}

UIWindow::UIWindow() : focusSystem_(std::make_unique<UIFocusSystem>(*this)) {}

UIWindow::~UIWindow() {
    // The root controller, when it goes, takes what it presents off the window.
    presented_.clear();
    rootViewController_ = nullptr;
}

UIWindow* UIWindow::window() const {
    return const_cast<UIWindow*>(this);
}

void UIWindow::setRootViewController(const Ref<UIViewController>& controller) {
    if (rootViewController_ == controller) return;
    if (rootViewController_) {
        rootViewController_->view().removeFromSuperview();
        rootViewController_->viewDidDisappear(false);
    }
    rootViewController_ = controller;
    if (!controller) return;
    controller->viewWillAppear(false);
    insertSubview(controller->view(), 0);
    controller->view().setFrame({{}, bounds().size});
    controller->viewDidAppear(false);
}

void UIWindow::addPresented(const Ref<UIViewController>& controller) {
    presented_.push_back(controller);
    addSubview(controller->view());
    controller->view().setFrame({{}, bounds().size});
}

void UIWindow::removePresented(UIViewController& controller) {
    const auto found = std::ranges::find(presented_, &controller, &Ref<UIViewController>::get);
    if (found == presented_.end()) return;
    const Ref<UIViewController> removed = *found;
    presented_.erase(found);
    removed->view().removeFromSuperview();
}

bool UIWindow::keyDown(std::string_view name) {
    if (presented_.empty()) return false;
    const Ref<UIViewController> topmost = presented_.back();
    return !topmost->isBeingDismissed() && topmost->keyDown(name);
}

void UIWindow::layoutSubviews() {
    UIView::layoutSubviews();
    const CGRect whole{{}, bounds().size};
    if (rootViewController_) rootViewController_->view().setFrame(whole);
    for (const auto& controller : presented_) controller->view().setFrame(whole);
}

CGRect UIWindow::safeArea() const {
    const UIEdgeInsets& insets = UIScreen::mainScreen().safeAreaInsets();
    const CGSize size = bounds().size;
    return CGRectMake(insets.left, insets.top, std::max(0.0, size.width - insets.left - insets.right),
                      std::max(0.0, size.height - insets.top - insets.bottom));
}

void UIWindow::raisePresented() {
    std::vector<UIView*> raised;
    for (const auto& controller : presented_) raised.push_back(&controller->view());
    for (const auto& overlay : overlays_) raised.push_back(overlay.get());
    const std::size_t count = std::min(raised.size(), subviews().size());
    const auto isThere = [](const Ref<UIView>& subview, const UIView* view) { return subview.get() == view; };
    if (count == raised.size() && std::equal(subviews().end() - static_cast<std::ptrdiff_t>(count), subviews().end(),
                                             raised.begin(), raised.end(), isThere))
        return;
    for (UIView* view : raised) bringSubviewToFront(*view);
}

void UIWindow::addOverlay(UIView& overlay) {
    if (std::ranges::find(overlays_, &overlay, &Ref<UIView>::get) != overlays_.end()) return;
    overlays_.emplace_back(&overlay);
    addSubview(overlay);
}

void UIWindow::removeOverlay(UIView& overlay) {
    const Ref<UIView> kept(&overlay);
    if (std::erase(overlays_, kept) > 0) overlay.UIView::removeFromSuperview();
}

UIView* UIWindow::hitTest(CGPoint point) {
    if (!presented_.empty()) {
        UIView& topmost = presented_.back()->view();
        if (presented_.back()->isBeingDismissed()) return &topmost;
        UIView* hit = topmost.hitTest(convertPointFromScreen(point, topmost));
        return hit ? hit : &topmost;
    }
    for (const Ref<UIView>& subview : std::views::reverse(subviews())) {
        UIView* hit = subview->hitTest(convertPointFromScreen(point, *subview));
        for (UIView* view = hit; view && view != this; view = view->superview()) {
            if (takesTouches(*view)) return hit;
        }
    }
    return nullptr;
}

}  // namespace flarebox
