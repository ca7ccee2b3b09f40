#include <SceneKit/Turntable.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace flarebox::detail {
namespace {

// Radians, seconds.
constexpr double turningSpeed = 0.35;
constexpr double anglePerSide = std::numbers::pi;
constexpr double steepestPitch = 1.3;
constexpr double fastest = 12, slowest = 0.01;
constexpr double friction = 3.2;
constexpr double zoomRate = 14;
constexpr double longestStep = 0.1;
/// A finger that has rested for so long before it lets go throws nothing.
constexpr double restBeforeRelease = 0.12;

}  // namespace

void Turntable::reset(bool turnsByItself) {
    *this = Turntable();
    turnsByItself_ = turnsByItself;
}

void Turntable::rest() {
    turnsByItself_ = false;
    yawSpeed_ = pitchSpeed_ = 0;
}

void Turntable::turn(double yaw, double pitch) {
    rest();
    yaw_ += yaw;
    pitch_ = std::clamp(pitch_ + pitch, -steepestPitch, steepestPitch);
}

void Turntable::hold() {
    isHeld_ = true;
    rest();
}

void Turntable::drag(double across, double down, double now) {
    const double yawStep = across * anglePerSide, pitchStep = down * anglePerSide;
    yaw_ += yawStep;
    pitch_ = std::clamp(pitch_ + pitchStep, -steepestPitch, steepestPitch);
    // Events come in bursts: the speed is an average over the last few.
    const double elapsed = std::max(now - lastDrag_, 1.0 / 240);
    const double share = std::min(1.0, elapsed / 0.05);
    const auto blend = [share, elapsed](double& speed, double step) {
        speed += (std::clamp(step / elapsed, -fastest, fastest) - speed) * share;
    };
    blend(yawSpeed_, yawStep);
    blend(pitchSpeed_, pitchStep);
    lastDrag_ = now;
}

void Turntable::release(double now) {
    isHeld_ = false;
    if (now - lastDrag_ > restBeforeRelease) yawSpeed_ = pitchSpeed_ = 0;
    lastAdvance_ = now;
}

void Turntable::zoom(double factor) {
    if (!(factor > 0) || !std::isfinite(factor)) return;
    turnsByItself_ = false;
    zoomTarget_ = std::clamp(zoomTarget_ * factor, smallestZoom, largestZoom);
}

void Turntable::advance(double now) {
    const double step = hasTime_ ? std::clamp(now - lastAdvance_, 0.0, longestStep) : 0;
    hasTime_ = true;
    lastAdvance_ = now;
    zoom_ += (zoomTarget_ - zoom_) * (1 - std::exp(-zoomRate * step));
    if (std::abs(zoomTarget_ - zoom_) < 1e-3) zoom_ = zoomTarget_;
    if (turnsByItself_) yaw_ += turningSpeed * step;
    if (isHeld_ || turnsByItself_) return;

    const double slowing = std::exp(-friction * step);
    const double glide = (1 - slowing) / friction;
    yaw_ += yawSpeed_ * glide;
    pitch_ = std::clamp(pitch_ + pitchSpeed_ * glide, -steepestPitch, steepestPitch);
    yawSpeed_ *= slowing;
    pitchSpeed_ *= slowing;
    if (std::abs(yawSpeed_) < slowest) yawSpeed_ = 0;
    if (std::abs(pitchSpeed_) < slowest) pitchSpeed_ = 0;
}

bool Turntable::isMoving() const {
    if (turnsByItself_ || zoom_ != zoomTarget_) return true;
    return !isHeld_ && (yawSpeed_ != 0 || pitchSpeed_ != 0);
}

SCNMatrix4 Turntable::orientation() const {
    return makeRotationX(static_cast<float>(pitch_)) * makeRotationY(static_cast<float>(yaw_));
}

}  // namespace flarebox::detail
