#include <UIKit/UIActivityIndicatorView.h>

#include <Foundation/Clock.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace flarebox {
namespace {

constexpr int spokeCount = 12;
constexpr double stepInterval = 1.0 / spokeCount;
// How often one that is covered or hidden by an ancestor looks whether it can be seen again.
constexpr double hiddenInterval = 0.5;
constexpr float faintest = 0.18F;
// Of half the side.
constexpr CGFloat spokeStart = 0.5, spokeEnd = 0.9, spokeWidth = 0.15;

}  // namespace

const ClassInfo& UIActivityIndicatorView::staticClass() {
    static const ClassInfo info("UIActivityIndicatorView", &UIView::staticClass(),
                                createObject<UIActivityIndicatorView>);
    return info;
}

UIActivityIndicatorView::UIActivityIndicatorView() {
    setUserInteractionEnabled(false);
    setHidden(true);
    setAccessibilityLabel("Loading");
}

UIActivityIndicatorView::~UIActivityIndicatorView() {
    cancelStep();
}

void UIActivityIndicatorView::startAnimating() {
    if (hidesWhenStopped_) setHidden(false);
    if (animating_) return;
    animating_ = true;
    startTime_ = Clock::current().uptime();
    setNeedsDisplay();
    scheduleStep();
}

void UIActivityIndicatorView::stopAnimating() {
    if (hidesWhenStopped_) setHidden(true);
    if (!animating_) return;
    animating_ = false;
    cancelStep();
    setNeedsDisplay();
}

void UIActivityIndicatorView::setHidesWhenStopped(bool hides) {
    hidesWhenStopped_ = hides;
    setHidden(hides && !animating_);
}

void UIActivityIndicatorView::setColor(const UIColor& color) {
    if (color_ == color) return;
    color_ = color;
    setNeedsDisplay();
}

UIAccessibilityTraits UIActivityIndicatorView::accessibilityTraits() const {
    return UIView::accessibilityTraits() | UIAccessibilityTraits::UpdatesFrequently;
}

int UIActivityIndicatorView::leadingSpoke() const {
    if (!animating_) return 0;
    const double steps = (Clock::current().uptime() - startTime_) / stepInterval;
    return static_cast<int>(std::fmod(std::floor(steps + 1e-6), spokeCount));
}

void UIActivityIndicatorView::didMoveToWindow() {
    UIView::didMoveToWindow();
    cancelStep();
    scheduleStep();
}

void UIActivityIndicatorView::scheduleStep() {
    if (!animating_ || stepIsPending_ || !window()) return;
    stepIsPending_ = true;
    const Weak<UIActivityIndicatorView> weak(this);
    pendingStep_ = MainQueue::shared().after(isVisibleInWindow() ? stepInterval : hiddenInterval, [weak] {
        if (const auto self = weak.lock()) self->step();
    });
}

void UIActivityIndicatorView::cancelStep() {
    if (stepIsPending_) MainQueue::shared().cancel(pendingStep_);
    stepIsPending_ = false;
}

void UIActivityIndicatorView::step() {
    stepIsPending_ = false;
    if (isVisibleInWindow()) setNeedsDisplay();
    scheduleStep();
}

void UIActivityIndicatorView::drawRect(Canvas& canvas, const CGRect& bounds) {
    const CGFloat half = std::min(bounds.width(), bounds.height()) / 2;
    const CGPoint center = {bounds.midX(), bounds.midY()};
    const int leading = leadingSpoke();
    for (int i = 0; i < spokeCount; ++i) {
        const int age = (leading - i + spokeCount) % spokeCount;
        const float strength = std::max(faintest, 1 - static_cast<float>(age) / (spokeCount - 1));
        const double angle = 2 * std::numbers::pi * i / spokeCount - std::numbers::pi / 2;
        const CGPoint direction = {std::cos(angle) * half, std::sin(angle) * half};
        canvas.moveTo(center + CGPoint{direction.x * spokeStart, direction.y * spokeStart});
        canvas.lineTo(center + CGPoint{direction.x * spokeEnd, direction.y * spokeEnd});
        canvas.strokePath(color_.withAlpha(color_.alpha * strength), half * spokeWidth);
    }
}

}  // namespace flarebox
