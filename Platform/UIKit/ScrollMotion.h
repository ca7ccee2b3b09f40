#pragma once

#include <UIKit/Geometry.h>

namespace flarebox {

/// How one coordinate of a content offset moves by itself: a function of the time since it began, the same at every
/// frame rate.
class ScrollMotion {
public:
    /// The ends of the content; `minimum` is not larger than `maximum`.
    struct Range {
        CGFloat minimum = 0, maximum = 0;
        constexpr CGFloat clamp(CGFloat value) const { return std::clamp(value, minimum, maximum); }
    };

    /// Stands still.
    static ScrollMotion resting(CGFloat position);
    /// Let go with a velocity in points a second: slows down, swings back where it runs over an end, and returns to the
    /// nearest end when it starts beyond one.
    static ScrollMotion thrown(CGFloat position, CGFloat velocity, Range range);
    /// Eases in and out within `duration` seconds.
    static ScrollMotion eased(CGFloat from, CGFloat to, double duration);
    /// Follows a wheel: fast at first, then ever slower.
    static ScrollMotion followed(CGFloat from, CGFloat to);

    CGFloat position(double time) const;
    /// Whether it has come to rest.
    bool isAtRest(double time) const { return time >= duration_; }
    /// Where it comes to rest.
    CGFloat target() const { return target_; }

    /// What is shown when a finger drags the content to `position`, `extent` being the size of what is visible: beyond
    /// the ends it follows ever more slowly.
    static CGFloat rubberBanded(CGFloat position, Range range, CGFloat extent);
    /// The inverse: where the finger is for what is shown.
    static CGFloat unrubberBanded(CGFloat position, Range range, CGFloat extent);

private:
    enum class Kind { Resting, Thrown, Eased, Followed };
    void springFrom(CGFloat position, CGFloat velocity, CGFloat target, double time);
    CGFloat glide(double time) const;

    Kind kind_ = Kind::Resting;
    CGFloat start_ = 0, velocity_ = 0, target_ = 0;
    double duration_ = 0;
    /// The swing back: when it begins, how far out and how fast.
    double springStart_ = 0;
    CGFloat springOffset_ = 0, springVelocity_ = 0;
};

}  // namespace flarebox
