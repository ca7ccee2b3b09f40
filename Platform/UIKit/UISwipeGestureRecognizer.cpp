#include <UIKit/UISwipeGestureRecognizer.h>
#include <UIKit/UITouch.h>

#include <cmath>

namespace flarebox {
namespace {

constexpr CGFloat requiredDistance = 50;
constexpr double longestDuration = 0.5;
/// How far a swipe may stray from its direction for each point along it.
constexpr CGFloat toleratedSlope = 0.6;

std::uint32_t directionOf(CGPoint movement) {
    const CGFloat dx = std::abs(movement.x), dy = std::abs(movement.y);
    if (dx >= requiredDistance && dy <= dx * toleratedSlope) {
        return movement.x > 0 ? UISwipeGestureRecognizerDirectionRight : UISwipeGestureRecognizerDirectionLeft;
    }
    if (dy >= requiredDistance && dx <= dy * toleratedSlope) {
        return movement.y > 0 ? UISwipeGestureRecognizerDirectionDown : UISwipeGestureRecognizerDirectionUp;
    }
    return 0;
}

}  // namespace

const ClassInfo& UISwipeGestureRecognizer::staticClass() {
    static const ClassInfo info("UISwipeGestureRecognizer", &UIGestureRecognizer::staticClass(), nullptr);
    return info;
}

Ref<UISwipeGestureRecognizer> UISwipeGestureRecognizer::initWithTarget(NSObject& target, std::string_view action) {
    return make<UISwipeGestureRecognizer>(&target, action);
}

void UISwipeGestureRecognizer::touchesBegan(UITouch& touch) {
    start_ = touch.locationInView(nullptr);
    startTime_ = touch.timestamp();
}

void UISwipeGestureRecognizer::touchesMoved(UITouch& touch) {
    if (state() != State::Possible) return;
    if (touch.timestamp() - startTime_ > longestDuration) return fail();
    if (directionOf(touch.locationInView(nullptr) - start_) & directions_) recognize();
}

// The last stretch of a flick may arrive with the end of the touch alone.
void UISwipeGestureRecognizer::touchesEnded(UITouch& touch) {
    touchesMoved(touch);
}

}  // namespace flarebox
