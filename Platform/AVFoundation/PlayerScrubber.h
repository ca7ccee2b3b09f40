#pragma once

#include <UIKit/UIControl.h>

namespace flarebox {

/// A line with a knob that stands for a moment of a video and can be dragged. Sends ValueChanged while it is dragged,
/// after TouchDown and before one of TouchUpInside, TouchUpOutside and TouchCancel. Main thread.
class PlayerScrubber : public UIControl {
    FLAREBOX_CLASS(PlayerScrubber)
public:
    static constexpr CGFloat trackHeight = 4, knobSide = 14;

    /// From 0 at the left end to 1 at the right.
    double position() const { return position_; }
    /// Limited to its range. Does not take the knob from a finger that drags it.
    void setPosition(double position);
    /// What one step of a key moves it by, as a part of the whole; 0, the default, for nothing.
    void setStep(double step) { step_ = step; }
    bool isDragged() const { return isDragged_; }
    /// The middle of the knob, in the view's coordinates.
    CGPoint knobCenter() const;

    UIAccessibilityTraits accessibilityTraits() const override;
    bool accessibilityActivate() override { return false; }
    /// As if it had been dragged there.
    bool accessibilityAdjust(int steps) override;
    void touchesBegan(UITouch& touch) override;
    void touchesMoved(UITouch& touch) override;
    void touchesEnded(UITouch& touch) override;
    void touchesCancelled(UITouch& touch) override;
    void drawRect(Canvas& canvas, const CGRect& bounds) override;
    bool drawsContent() const override { return true; }

private:
    CGFloat travel() const;
    void dragTo(CGFloat x);
    void change(double position);

    double position_ = 0, step_ = 0;
    /// From the finger to the middle of the knob.
    CGFloat grip_ = 0;
    bool isDragged_ = false;
};

}  // namespace flarebox
