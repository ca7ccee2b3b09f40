#pragma once

#include <Foundation/NSObject.h>
#include <UIKit/Geometry.h>

namespace flarebox {

class UIView;

enum class UITouchPhase : std::uint8_t { Began, Moved, Ended, Cancelled };

/// One finger, or the mouse with its button held, from the moment it went down on the panel until it ends. Main thread.
class UITouch : public NSObject {
    FLAREBOX_CLASS(UITouch)
public:
    /// `point` is in points of the screen, `timestamp` the clock's uptime in seconds.
    UITouch(int pointer, UIView& view, CGPoint point, double timestamp);

    /// Tells fingers apart; the mouse is 0.
    int pointer() const { return pointer_; }
    UITouchPhase phase() const { return phase_; }
    /// When it last changed, in seconds of the clock's uptime.
    double timestamp() const { return timestamp_; }
    /// The view it began in; null once that is gone.
    UIView* view() const;
    /// In the view's coordinates as the view is shown at this moment; in the screen's for null.
    CGPoint locationInView(const UIView* view) const;
    CGPoint previousLocationInView(const UIView* view) const;

    /// For what hands touches out.
    void update(UITouchPhase phase, CGPoint point, double timestamp);

private:
    Weak<UIView> view_;
    CGPoint point_, previousPoint_;
    double timestamp_;
    int pointer_;
    UITouchPhase phase_ = UITouchPhase::Began;
};

/// Between points of the screen and of a view as it is shown at this moment of an animation.
CGPoint convertPointFromScreen(CGPoint point, const UIView& view);

}  // namespace flarebox
