#include <Flarebox/Views/CheckMarkView.h>
#include <Foundation/Clock.h>
#include <UIKit/UIAccessibility.h>

#include <algorithm>
#include <cmath>

namespace flarebox {
namespace {

constexpr double duration = 0.25;
constexpr CGFloat lineWidth = 0.09;
/// In parts of the view's side.
constexpr CGPoint points[] = {{0.18, 0.54}, {0.41, 0.77}, {0.84, 0.27}};

CGFloat distance(CGPoint a, CGPoint b) {
    return std::hypot(b.x - a.x, b.y - a.y);
}
CGPoint between(CGPoint a, CGPoint b, double share) {
    return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share};
}

}  // namespace

const ClassInfo& CheckMarkView::staticClass() {
    static const ClassInfo info("CheckMarkView", &UIView::staticClass(), createObject<CheckMarkView>);
    return info;
}

CheckMarkView::CheckMarkView() = default;
CheckMarkView::~CheckMarkView() = default;

void CheckMarkView::draw() {
    startTime_ = Clock::current().uptime();
    progress_ = UIAccessibilityIsReduceMotionEnabled() ? 1 : 0;
    setNeedsDisplay();
    if (progress_ == 1) return;
    link_ = std::make_unique<CADisplayLink>([this](double now) { advance(now); });
}

void CheckMarkView::advance(double now) {
    const double share = std::clamp((now - startTime_) / duration, 0.0, 1.0);
    // Quick at first, and gently to its end.
    progress_ = 1 - (1 - share) * (1 - share);
    setNeedsDisplay();
    if (share >= 1) link_ = nullptr;
}

void CheckMarkView::drawRect(Canvas& canvas, const CGRect& bounds) {
    const CGFloat side = std::min(bounds.width(), bounds.height());
    const CGPoint corner = {bounds.midX() - side / 2, bounds.midY() - side / 2};
    const auto at = [&](CGPoint point) { return corner + CGPoint{point.x * side, point.y * side}; };
    const CGFloat first = distance(points[0], points[1]), second = distance(points[1], points[2]);
    const CGFloat drawn = progress_ * (first + second);
    if (!(drawn > 0)) return;
    canvas.moveTo(at(points[0]));
    canvas.lineTo(at(between(points[0], points[1], std::min(1.0, drawn / first))));
    if (drawn > first) canvas.lineTo(at(between(points[1], points[2], (drawn - first) / second)));
    canvas.strokePath(tintColor(), lineWidth * side);
}

}  // namespace flarebox
