#include <UIKit/ScrollMotion.h>

#include <cmath>

namespace flarebox {
namespace {

/// Share of the velocity lost each second while gliding: 0.998 is left after each millisecond.
const double friction = -1000 * std::log(0.998);
/// Points a second below which nobody sees a movement.
constexpr CGFloat slowestVelocity = 8;
/// Points from its target at which a movement counts as over.
constexpr CGFloat smallestDistance = 0.25;
/// Stiffness of the swing back, in 1/second; critically damped.
constexpr double springRate = 14;
constexpr double longestSpring = 2;
/// Seconds in which a wheel's remaining distance shrinks to 1/e.
constexpr double wheelDelay = 0.05;
constexpr CGFloat rubberStiffness = 0.55;

CGFloat springAt(CGFloat offset, CGFloat velocity, double time) {
    return (offset + (velocity + springRate * offset) * time) * std::exp(-springRate * time);
}

double springDuration(CGFloat offset, CGFloat velocity) {
    for (double time = 0; time < longestSpring; time += 1.0 / 60) {
        const CGFloat farthest =
            (std::abs(offset) + std::abs(velocity + springRate * offset) * time) * std::exp(-springRate * time);
        if (time > 1 / springRate && farthest < smallestDistance) return time;
    }
    return longestSpring;
}

CGFloat stretched(CGFloat beyond, CGFloat extent) {
    return (1 - 1 / (beyond * rubberStiffness / extent + 1)) * extent;
}

CGFloat unstretched(CGFloat shown, CGFloat extent) {
    const CGFloat limited = std::min(shown, extent * 0.99);
    return (extent / (extent - limited) - 1) * extent / rubberStiffness;
}

}  // namespace

ScrollMotion ScrollMotion::resting(CGFloat position) {
    ScrollMotion motion;
    motion.start_ = motion.target_ = position;
    return motion;
}

ScrollMotion ScrollMotion::thrown(CGFloat position, CGFloat velocity, Range range) {
    ScrollMotion motion;
    motion.kind_ = Kind::Thrown;
    motion.start_ = position;
    motion.velocity_ = velocity;
    const CGFloat end = position + velocity / friction;
    const bool isInside = range.clamp(position) == position;
    if (range.clamp(end) == end && (isInside || std::abs(velocity) > slowestVelocity)) {
        motion.duration_ = std::max(0.0, std::log(std::abs(velocity) / slowestVelocity) / friction);
        motion.target_ = motion.duration_ > 0 ? motion.glide(motion.duration_) : position;
        motion.springStart_ = motion.duration_;
        if (range.clamp(motion.target_) == motion.target_) return motion;
    }
    if (!isInside) {
        motion.springFrom(position, velocity, range.clamp(position), 0);
        return motion;
    }
    const CGFloat limit = range.clamp(end);
    const double crossing = -std::log(1 - (limit - position) * friction / velocity) / friction;
    motion.springFrom(limit, velocity * std::exp(-friction * crossing), limit, crossing);
    return motion;
}

ScrollMotion ScrollMotion::eased(CGFloat from, CGFloat to, double duration) {
    ScrollMotion motion;
    motion.kind_ = Kind::Eased;
    motion.start_ = from;
    motion.target_ = to;
    motion.duration_ = duration;
    return motion;
}

ScrollMotion ScrollMotion::followed(CGFloat from, CGFloat to) {
    ScrollMotion motion;
    motion.kind_ = Kind::Followed;
    motion.start_ = from;
    motion.target_ = to;
    motion.duration_ = std::max(0.0, wheelDelay * std::log(std::abs(to - from) / smallestDistance));
    return motion;
}

void ScrollMotion::springFrom(CGFloat position, CGFloat velocity, CGFloat target, double time) {
    springStart_ = time;
    springOffset_ = position - target;
    springVelocity_ = velocity;
    target_ = target;
    duration_ = time + springDuration(springOffset_, springVelocity_);
}

CGFloat ScrollMotion::glide(double time) const {
    return start_ + velocity_ / friction * (1 - std::exp(-friction * time));
}

CGFloat ScrollMotion::position(double time) const {
    if (time >= duration_) return target_;
    switch (kind_) {
        case Kind::Resting:
            return target_;
        case Kind::Thrown:
            if (time < springStart_) return glide(time);
            return target_ + springAt(springOffset_, springVelocity_, time - springStart_);
        case Kind::Eased: {
            const double share = time / duration_;
            return start_ + (target_ - start_) * share * share * (3 - 2 * share);
        }
        case Kind::Followed:
            return target_ + (start_ - target_) * std::exp(-time / wheelDelay);
    }
    return target_;
}

CGFloat ScrollMotion::rubberBanded(CGFloat position, Range range, CGFloat extent) {
    if (extent <= 0) return range.clamp(position);
    if (position > range.maximum) return range.maximum + stretched(position - range.maximum, extent);
    if (position < range.minimum) return range.minimum - stretched(range.minimum - position, extent);
    return position;
}

CGFloat ScrollMotion::unrubberBanded(CGFloat position, Range range, CGFloat extent) {
    if (extent <= 0) return range.clamp(position);
    if (position > range.maximum) return range.maximum + unstretched(position - range.maximum, extent);
    if (position < range.minimum) return range.minimum - unstretched(range.minimum - position, extent);
    return position;
}

}  // namespace flarebox
