#pragma once

#include <SceneKit/SCNMath.h>

namespace flarebox::detail {

/// How a model stands before the onlooker: it turns slowly by itself until a finger takes hold of it, follows the
/// finger, and runs on for a while when let go. Times are seconds of any one clock.
class Turntable {
public:
    /// Upright, and turning by itself unless it is not to move without being touched.
    void reset(bool turnsByItself);

    /// A finger takes hold: whatever moved stands still.
    void hold();
    /// The finger moves, by parts of the view's smaller side: to the right and down where positive.
    void drag(double across, double down, double now);
    /// The finger lets go.
    void release(double now);
    /// Turns and tilts by so much, at once, in radians; whatever moved stands still.
    void turn(double yaw, double pitch);
    /// Nothing moves any more until the next touch.
    void rest();
    /// Shows everything `factor` times as large, softly and within limits.
    void zoom(double factor);

    /// Goes on to a moment; a long pause counts as a short one.
    void advance(double now);
    /// Whether a later moment looks different.
    bool isMoving() const;

    SCNMatrix4 orientation() const;
    double magnification() const { return zoom_; }
    double yaw() const { return yaw_; }
    double pitch() const { return pitch_; }

private:
    double yaw_ = 0, pitch_ = restingPitch;
    double yawSpeed_ = 0, pitchSpeed_ = 0;
    double zoom_ = 1, zoomTarget_ = 1;
    double lastDrag_ = 0, lastAdvance_ = 0;
    bool turnsByItself_ = true, isHeld_ = false, hasTime_ = false;

public:
    /// A little from above, in radians.
    static constexpr double restingPitch = 0.2;
    static constexpr double smallestZoom = 0.5, largestZoom = 4;
};

}  // namespace flarebox::detail
