#include <AVFoundation/PlayerScrubber.h>
#include <UIKit/UIPalette.h>
#include <UIKit/UITouch.h>

#include <algorithm>
#include <cmath>

namespace flarebox {
namespace {

constexpr float trackStrength = 0.24F;
/// How much larger the knob is while it is held.
constexpr CGFloat heldGrowth = 4;
/// A finger that comes down that near to the knob takes hold of it where it is; elsewhere the knob comes to the finger.
constexpr CGFloat gripRadius = 16;

CGRect squareAround(CGPoint center, CGFloat side) {
    return CGRectMake(center.x - side / 2, center.y - side / 2, side, side);
}

}  // namespace

const ClassInfo& PlayerScrubber::staticClass() {
    static const ClassInfo info("PlayerScrubber", &UIControl::staticClass(), createObject<PlayerScrubber>);
    return info;
}

CGFloat PlayerScrubber::travel() const {
    return std::max(0.0, bounds().width() - knobSide - heldGrowth);
}

CGPoint PlayerScrubber::knobCenter() const {
    return {(knobSide + heldGrowth) / 2 + position_ * travel(), bounds().midY()};
}

void PlayerScrubber::setPosition(double position) {
    if (!isDragged_) change(position);
}

void PlayerScrubber::change(double position) {
    const double limited = position >= 0 ? std::min(position, 1.0) : 0;
    if (limited == position_) return;
    position_ = limited;
    setNeedsDisplay();
}

UIAccessibilityTraits PlayerScrubber::accessibilityTraits() const {
    return UIControl::accessibilityTraits() | UIAccessibilityTraits::Adjustable;
}

bool PlayerScrubber::accessibilityAdjust(int steps) {
    if (!isEnabled() || isDragged_ || !(step_ > 0)) return false;
    const double former = position_;
    sendActions(UIControlEvents::TouchDown);
    change(former + steps * step_);
    sendActions(UIControlEvents::ValueChanged);
    sendActions(UIControlEvents::TouchUpInside);
    return true;
}

void PlayerScrubber::touchesBegan(UITouch& touch) {
    if (!isEnabled() || isDragged_) return;
    isDragged_ = true;
    UIControl::touchesBegan(touch);
    const CGFloat x = touch.locationInView(this).x, knob = knobCenter().x;
    grip_ = std::abs(x - knob) <= gripRadius ? knob - x : 0;
    dragTo(x);
}

void PlayerScrubber::touchesMoved(UITouch& touch) {
    if (!isDragged_) return;
    UIControl::touchesMoved(touch);
    dragTo(touch.locationInView(this).x);
}

void PlayerScrubber::touchesEnded(UITouch& touch) {
    if (!isDragged_) return;
    dragTo(touch.locationInView(this).x);
    isDragged_ = false;
    UIControl::touchesEnded(touch);
}

void PlayerScrubber::touchesCancelled(UITouch& touch) {
    if (!isDragged_) return;
    isDragged_ = false;
    UIControl::touchesCancelled(touch);
}

void PlayerScrubber::dragTo(CGFloat x) {
    const double former = position_;
    if (travel() > 0) change((x + grip_ - (knobSide + heldGrowth) / 2) / travel());
    if (position_ != former) sendActions(UIControlEvents::ValueChanged);
}

void PlayerScrubber::drawRect(Canvas& canvas, const CGRect& bounds) {
    const UIPalette& palette = UIPalette::current();
    const CGPoint knob = knobCenter();
    const CGRect track = CGRectMake(bounds.minX() + heldGrowth / 2, bounds.midY() - trackHeight / 2,
                                    bounds.width() - heldGrowth, trackHeight);
    const CornerRadii ends = CornerRadii::all(trackHeight / 2);
    canvas.fillRoundedRect(track, ends, palette.color(UIPalette::Shade::Text).withAlpha(trackStrength));
    if (!isEnabled()) return;
    CGRect played = track;
    played.size.width = std::max(0.0, knob.x - track.minX());
    canvas.fillRoundedRect(played, ends, palette.color(UIPalette::Shade::Accent));
    const CGFloat side = knobSide + (isDragged_ ? heldGrowth : 0);
    canvas.fillRoundedRect(squareAround(knob, side), CornerRadii::all(side / 2), palette.color(UIPalette::Shade::Text));
}

}  // namespace flarebox
