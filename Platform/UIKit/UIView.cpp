#include <Foundation/LogSink.h>
#include <Foundation/MainQueue.h>
#include <UIKit/LayoutEngine.h>
#include <UIKit/UIGestureRecognizer.h>
#include <UIKit/UIView.h>
#include <UIKit/UIViewState.h>
#include <UIKit/UIWindow.h>
#include <UIKit/ViewAnimations.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace flarebox {
namespace {

constexpr CGFloat leastVisibleAlpha = 0.01;

}  // namespace

const ClassInfo& UIView::staticClass() {
    static const ClassInfo info("UIView", &NSObject::staticClass(), createObject<UIView>);
    return info;
}

UIView::UIView() = default;

UIView::~UIView() {
    ViewAnimations::forget(*this);
    // The engine speaks of the sub-views, so it goes while they are here.
    if (layoutState_) layoutState_->ownEngine.reset();
    for (const auto& constraint : constraints_) releaseConstraint(*constraint);
    for (const auto& subview : subviews_) {
        subview->superview_ = nullptr;
        subview->lostEngine_ = true;
    }
}

void UIView::dealloc() const {
    if (isMainThread()) return NSObject::dealloc();
    // Whether the queue runs or drops the work, the view goes with it.
    dispatch_async_main([self = std::shared_ptr<const UIView>(this)] {});
}

// The tree.

void UIView::addSubview(UIView& view) {
    attach(view, subviews_.size());
}
void UIView::insertSubview(UIView& view, std::size_t index) {
    attach(view, index);
}
void UIView::bringSubviewToFront(UIView& view) {
    if (view.superview_ == this) attach(view, subviews_.size());
}
void UIView::sendSubviewToBack(UIView& view) {
    if (view.superview_ == this) attach(view, 0);
}

void UIView::attach(UIView& view, std::size_t index) {
    if (isDescendantOfView(view)) {
        LogSink::write(LogLevelError, "UIView: a view cannot be added to itself or to a view inside it");
        return;
    }
    const Ref<UIView> kept(&view);
    UIWindow* const oldWindow = view.window();
    const bool isNew = view.superview_ != this;
    if (!isNew)
        std::erase(subviews_, kept);
    else if (view.superview_)
        view.detach();

    const auto place = subviews_.begin() + static_cast<std::ptrdiff_t>(std::min(index, subviews_.size()));
    subviews_.insert(place, kept);
    markChanged();
    if (!isNew) return;

    // Read before the view stops being a root.
    LayoutEngine* const brought = view.treeEngine();
    view.superview_ = this;
    if (brought) {
        makeTreeEngine().adopt(*brought);
        view.layoutState_->ownEngine.reset();
    }
    setNeedsLayout();
    if (view.needsLayout_ || view.subtreeNeedsLayout_) view.markLayoutNeededAbove();
    view.tellMoved(oldWindow);
}

void UIView::removeFromSuperview() {
    if (!superview_) return;
    const Ref<UIView> kept(this);
    UIWindow* const oldWindow = window();
    detach();
    tellMoved(oldWindow);
}

void UIView::detach() {
    dropConstraintsWithOutside();
    UIView& parent = *superview_;
    superview_ = nullptr;
    parent.setNeedsLayout();
    parent.markChanged();
    const auto place = std::ranges::find(parent.subviews_, this, &Ref<UIView>::get);
    parent.subviews_.erase(place);
}

void UIView::tellMoved(UIWindow* oldWindow) {
    if (window() != oldWindow) tellWindowChanged();
    didMoveToSuperview();
}

void UIView::tellWindowChanged() {
    didMoveToWindow();
    const std::vector<Ref<UIView>> below = subviews_;
    for (const auto& subview : below) subview->tellWindowChanged();
}

UIView& UIView::root() {
    UIView* view = this;
    while (view->superview_) view = view->superview_;
    return *view;
}

bool UIView::isDescendantOfView(const UIView& ancestor) const {
    for (const UIView* view = this; view; view = view->superview_) {
        if (view == &ancestor) return true;
    }
    return false;
}

UIWindow* UIView::window() const {
    return superview_ ? superview_->window() : nullptr;
}

// Geometry.

void UIView::setFrame(const CGRect& frame) {
    const bool isFinite = std::isfinite(frame.minX() + frame.minY() + frame.width() + frame.height());
    if (frame == frame_ || !isFinite) return;
    const bool isResized = frame.size != frame_.size;
    ViewAnimations::frameWillChange(*this, frame);
    frame_ = frame;
    if (layoutState_ && layoutState_->isRegistered) treeEngine()->frameChanged(*this);
    if (isResized) setNeedsLayout();
    markChanged();
}

void UIView::setBoundsOrigin(CGPoint origin) {
    if (origin == boundsOrigin_ || !std::isfinite(origin.x + origin.y)) return;
    boundsOrigin_ = origin;
    RenderState::markMoved(*this, detail::DisplayList::Carries::Content);
}

CGRect UIView::presentationFrame() const {
    return animationState_ && animationState_->frame ? *animationState_->frame : frame_;
}
CGFloat UIView::presentationAlpha() const {
    return animationState_ && animationState_->alpha ? *animationState_->alpha : alpha_;
}

CGPoint UIView::convertPointToView(CGPoint point, const UIView* view) const {
    for (const UIView* from = this; from->superview_; from = from->superview_)
        point = point - from->boundsOrigin_ + from->frame_.origin;
    if (!view) return point;
    CGPoint origin;
    for (const UIView* to = view; to->superview_; to = to->superview_)
        origin = origin - to->boundsOrigin_ + to->frame_.origin;
    return point - origin;
}

CGRect UIView::convertRectToView(const CGRect& rect, const UIView* view) const {
    return {convertPointToView(rect.origin, view), rect.size};
}

CGRect UIView::presentationRectInRoot() const {
    CGRect rect{{}, presentationFrame().size};
    for (const UIView* view = this; view->superview_; view = view->superview_)
        rect.origin = rect.origin + view->presentationFrame().origin - view->superview_->boundsOrigin_;
    return rect;
}

UIEdgeInsets UIView::safeAreaInsets() const {
    const UIWindow* const window = this->window();
    if (!window) return {};
    const CGRect safe = window->safeArea(), own = convertRectToView(bounds(), window);
    return {std::max(0.0, safe.minY() - own.minY()), std::max(0.0, safe.minX() - own.minX()),
            std::max(0.0, own.maxY() - safe.maxY()), std::max(0.0, own.maxX() - safe.maxX())};
}

// Look.

void UIView::setHidden(bool hidden) {
    if (hidden == hidden_) return;
    hidden_ = hidden;
    markChanged();
}

void UIView::setAlpha(CGFloat alpha) {
    alpha = alpha > 0 ? std::min(alpha, 1.0) : 0;
    if (alpha == alpha_) return;
    ViewAnimations::alphaWillChange(*this, alpha);
    alpha_ = alpha;
    markChanged();
}

void UIView::setBackgroundColor(const UIColor& color) {
    if (color == backgroundColor_) return;
    backgroundColor_ = color;
    setNeedsDisplay();
}

void UIView::setTintColor(const UIColor& color) {
    if (color == tintColor_) return;
    tintColor_ = color;
    setNeedsDisplay();
}

void UIView::setClipsToBounds(bool clips) {
    if (clips == clipsToBounds_) return;
    clipsToBounds_ = clips;
    markChanged();
}

void UIView::setContentMode(UIViewContentMode mode) {
    if (mode == contentMode_) return;
    contentMode_ = mode;
    setNeedsDisplay();
}

bool UIView::isVisibleInWindow() const {
    for (const UIView* view = this; view; view = view->superview_) {
        if (view->hidden_ || view->alpha_ <= leastVisibleAlpha) return false;
    }
    return window() != nullptr;
}

// An ancestor that carries the stamp has told those above it.
void UIView::markChanged() {
    for (UIView* view = this; view && view->changeStamp_ != detail::changeStampInForce; view = view->superview_)
        view->changeStamp_ = detail::changeStampInForce;
}

void UIView::setNeedsDisplay() {
    needsDisplay_ = true;
    markChanged();
}

void UIView::drawRect(Canvas&, const CGRect&) {}

// Hooks.

void UIView::awakeFromNib() {}
void UIView::paletteDidChange() {
    setNeedsLayout();
}
void UIView::didMoveToSuperview() {}
void UIView::didMoveToWindow() {}
void UIView::safeAreaInsetsDidChange() {
    setNeedsLayout();
}

// Input.

UIView* UIView::hitTest(CGPoint point) {
    if (hidden_ || !userInteractionEnabled_ || presentationAlpha() <= leastVisibleAlpha || !pointInside(point))
        return nullptr;
    for (auto subview = subviews_.rbegin(); subview != subviews_.rend(); ++subview) {
        const CGPoint inside = point - (*subview)->presentationFrame().origin + (*subview)->boundsOrigin_;
        if (UIView* hit = (*subview)->hitTest(inside)) return hit;
    }
    return this;
}

bool UIView::pointInside(CGPoint point) const {
    return CGRect{boundsOrigin_, presentationFrame().size}.contains(point);
}

void UIView::touchesBegan(UITouch& touch) {
    if (superview_) superview_->touchesBegan(touch);
}
void UIView::touchesMoved(UITouch& touch) {
    if (superview_) superview_->touchesMoved(touch);
}
void UIView::touchesEnded(UITouch& touch) {
    if (superview_) superview_->touchesEnded(touch);
}
void UIView::touchesCancelled(UITouch& touch) {
    if (superview_) superview_->touchesCancelled(touch);
}

bool UIView::scrollWheel(CGPoint, CGFloat, CGFloat) {
    return false;
}

void UIView::addGestureRecognizer(const Ref<UIGestureRecognizer>& recognizer) {
    if (recognizer) gestureRecognizers_.push_back(recognizer);
}

// Animation.

void UIView::animateWithDuration(double duration, const std::function<void()>& animations,
                                 std::function<void(bool)> completion) {
    ViewAnimations::run(duration, animations, std::move(completion));
}

void UIView::performWithoutAnimation(const std::function<void()>& changes) {
    ViewAnimations::runWithout(changes);
}

}  // namespace flarebox
