#include <Foundation/Clock.h>
#include <UIKit/UIAccessibility.h>
#include <UIKit/UIGestureRecognizer.h>
#include <UIKit/UIScrollView.h>
#include <UIKit/UITouch.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <utility>

namespace flarebox {
namespace {

/// Points that a finger moves before the content follows it.
constexpr CGFloat dragThreshold = 8;
/// Seconds before the end of a drag in which its velocity is measured.
constexpr double velocityWindow = 0.1;
/// Points a second above which the content moves on.
constexpr CGFloat throwThreshold = 40;
constexpr CGFloat fastestThrow = 8000;
constexpr double animationDuration = 0.3;
/// Points a second by which a stick at its end moves the content.
constexpr CGFloat stickSpeed = 500;

/// The last moments of a finger's way.
class VelocityMeter {
public:
    void clear() { samples_.clear(); }

    void add(CGPoint point, double time) {
        samples_.push_back({point, time});
        while (samples_.size() > 1 && samples_.front().time < time - velocityWindow) samples_.pop_front();
    }

    /// Points a second; 0 when the finger has rested since.
    CGPoint velocity(double now) const {
        if (samples_.empty() || now - samples_.back().time > velocityWindow) return {};
        const double elapsed = samples_.back().time - samples_.front().time;
        if (elapsed <= 0) return {};
        const CGPoint way = samples_.back().point - samples_.front().point;
        return {limited(way.x / elapsed), limited(way.y / elapsed)};
    }

private:
    struct Sample {
        CGPoint point;
        double time;
    };
    static CGFloat limited(CGFloat velocity) { return std::clamp(velocity, -fastestThrow, fastestThrow); }

    std::deque<Sample> samples_;
};

}  // namespace

/// Takes a touch over once it moves along a direction in which the content scrolls.
class UIScrollView::PanRecognizer : public UIGestureRecognizer {
public:
    explicit PanRecognizer(UIScrollView& view) : UIGestureRecognizer(nullptr, {}), view_(&view) {}

    void touchesBegan(UITouch& touch) override {
        const Ref<UIScrollView> view = view_.lock();
        if (!view || !view->isScrollEnabled()) return fail();
        start_ = touch.locationInView(nullptr);
        meter_.clear();
        meter_.add(start_, touch.timestamp());
        // A finger on content that moves by itself catches it, and presses nothing.
        if (view->isDecelerating()) begin(*view, start_);
    }

    void touchesMoved(UITouch& touch) override {
        const Ref<UIScrollView> view = view_.lock();
        if (!view) return fail();
        const CGPoint location = touch.locationInView(nullptr);
        meter_.add(location, touch.timestamp());
        if (state() == State::Recognized) return view->drag(location);
        const CGFloat dx = std::abs(location.x - start_.x), dy = std::abs(location.y - start_.y);
        if (std::max(dx, dy) < dragThreshold) return;
        if (dx >= dy ? !view->scrollsHorizontally() : !view->scrollsVertically()) return fail();
        begin(*view, location);
    }

    void touchesEnded(UITouch& touch) override { end(meter_.velocity(touch.timestamp())); }
    void touchesCancelled(UITouch&) override { end({}); }

private:
    void begin(UIScrollView& view, CGPoint location) {
        recognize();
        view.beginDragging(location);
    }

    void end(CGPoint velocity) {
        const Ref<UIScrollView> view = view_.lock();
        if (view && state() == State::Recognized) view->endDragging(velocity);
    }

    Weak<UIScrollView> view_;
    CGPoint start_;
    VelocityMeter meter_;
};

const ClassInfo& UIScrollView::staticClass() {
    static const ClassInfo info("UIScrollView", &UIView::staticClass(), createObject<UIScrollView>);
    return info;
}

UIScrollView::UIScrollView() : pan_(make<PanRecognizer>(*this)) {
    setClipsToBounds(true);
    addGestureRecognizer(pan_);
}

UIScrollView::~UIScrollView() = default;

CGPoint UIScrollView::maximumContentOffset() const {
    return {std::max(0.0, contentSize_.width - bounds().width()),
            std::max(0.0, contentSize_.height - bounds().height())};
}

bool UIScrollView::scrollsHorizontally() const {
    return alwaysBounceHorizontal_ || maximumContentOffset().x > 0;
}
bool UIScrollView::scrollsVertically() const {
    return alwaysBounceVertical_ || maximumContentOffset().y > 0;
}

void UIScrollView::moveTo(CGPoint offset) {
    if (offset == contentOffset()) return;
    setBoundsOrigin(offset);
    contentOffsetDidChange();
    if (delegate_) delegate_->scrollViewDidScroll(*this);
}

void UIScrollView::setContentOffset(CGPoint offset, bool animated) {
    const Ref<UIScrollView> self(this);
    endMoving();
    if (!animated || UIAccessibilityIsReduceMotionEnabled()) return moveTo(offset);
    const CGPoint from = contentOffset();
    horizontal_ = ScrollMotion::eased(from.x, offset.x, animationDuration);
    vertical_ = ScrollMotion::eased(from.y, offset.y, animationDuration);
    start(Moving::ToOffset);
}

void UIScrollView::beginDragging(CGPoint location) {
    endMoving();
    dragging_ = true;
    dragStart_ = location;
    const CGPoint end = maximumContentOffset(), offset = contentOffset();
    offsetAtDragStart_ = {ScrollMotion::unrubberBanded(offset.x, {0, end.x}, bounds().width()),
                          ScrollMotion::unrubberBanded(offset.y, {0, end.y}, bounds().height())};
    if (delegate_) delegate_->scrollViewWillBeginDragging(*this);
}

void UIScrollView::drag(CGPoint location) {
    const CGPoint end = maximumContentOffset();
    const CGPoint wanted = offsetAtDragStart_ - (location - dragStart_);
    CGPoint offset = contentOffset();
    if (scrollsHorizontally()) offset.x = ScrollMotion::rubberBanded(wanted.x, {0, end.x}, bounds().width());
    if (scrollsVertically()) offset.y = ScrollMotion::rubberBanded(wanted.y, {0, end.y}, bounds().height());
    moveTo(offset);
}

void UIScrollView::endDragging(CGPoint velocity) {
    const auto motion = [](bool scrolls, CGFloat offset, CGFloat speed, CGFloat end) {
        const ScrollMotion::Range range{0, end};
        const bool moves = scrolls && (std::abs(speed) > throwThreshold || range.clamp(offset) != offset);
        return moves ? ScrollMotion::thrown(offset, speed, range) : ScrollMotion::resting(offset);
    };
    dragging_ = false;
    const CGPoint end = maximumContentOffset(), offset = contentOffset();
    // The content moves against the finger's direction on the coordinate's axis.
    horizontal_ = motion(scrollsHorizontally(), offset.x, -velocity.x, end.x);
    vertical_ = motion(scrollsVertically(), offset.y, -velocity.y, end.y);
    const bool decelerates = !horizontal_.isAtRest(0) || !vertical_.isAtRest(0);
    if (delegate_) delegate_->scrollViewDidEndDragging(*this, decelerates);
    if (!decelerates) return;
    start(Moving::Decelerating);
    if (delegate_) delegate_->scrollViewWillBeginDecelerating(*this);
}

bool UIScrollView::scrollWheel(CGPoint, CGFloat dx, CGFloat dy) {
    const CGPoint end = maximumContentOffset();
    if (!scrollEnabled_ || dragging_ || (end.x <= 0 && end.y <= 0)) return false;
    // A plain wheel turns up and down only; it moves what can move.
    if (end.y <= 0) dx = dx != 0 ? dx : dy;
    const bool follows = moving_ == Moving::ByWheel;
    const double shownAt = movedAt_;
    const CGPoint from = contentOffset();
    const CGPoint base = follows ? CGPoint{horizontal_.target(), vertical_.target()} : from;
    endMoving();
    horizontal_ = ScrollMotion::followed(from.x, std::clamp(base.x + dx, 0.0, end.x));
    vertical_ = ScrollMotion::followed(from.y, std::clamp(base.y + (end.y > 0 ? dy : 0), 0.0, end.y));
    start(Moving::ByWheel);
    // What is shown stems from the last frame: a wheel that turns a little before every one would hold it still.
    if (follows) motionStart_ = movedAt_ = shownAt;
    return true;
}

bool UIScrollView::scrollByStick(CGPoint deflection, double seconds) {
    const CGPoint end = maximumContentOffset(), from = contentOffset();
    const CGPoint to{std::clamp(from.x + deflection.x * stickSpeed * seconds, 0.0, end.x),
                     std::clamp(from.y + deflection.y * stickSpeed * seconds, 0.0, end.y)};
    if (to == from) return false;
    setContentOffset(to);
    return true;
}

void UIScrollView::start(Moving kind) {
    moving_ = kind;
    motionStart_ = movedAt_ = Clock::current().uptime();
    displayLink_ = std::make_unique<CADisplayLink>([this](double now) { advance(now); });
}

void UIScrollView::advance(double now) {
    const Ref<UIScrollView> self(this);
    movedAt_ = now;
    const double time = now - motionStart_;
    const bool isOver = horizontal_.isAtRest(time) && vertical_.isAtRest(time);
    const CADisplayLink* link = displayLink_.get();
    moveTo({horizontal_.position(time), vertical_.position(time)});
    // The delegate may have started another movement.
    if (isOver && displayLink_.get() == link) endMoving();
}

void UIScrollView::endMoving() {
    displayLink_.reset();
    const bool wasDecelerating = std::exchange(moving_, Moving::Not) == Moving::Decelerating;
    if (wasDecelerating && delegate_) delegate_->scrollViewDidEndDecelerating(*this);
}

}  // namespace flarebox
