#pragma once

#include <Foundation/MainQueue.h>
#include <UIKit/UIView.h>

namespace flarebox {

/// Twelve spokes that go round once a second. Costs nothing while it stands still or cannot be seen. Main thread only.
///
/// Set by layout files: `color`, `hidesWhenStopped`.
class UIActivityIndicatorView : public UIView {
    FLAREBOX_CLASS(UIActivityIndicatorView)
public:
    UIActivityIndicatorView();
    ~UIActivityIndicatorView() override;

    void startAnimating();
    void stopAnimating();
    bool isAnimating() const { return animating_; }
    /// True unless set: hidden until it is started, and again once it is stopped.
    bool hidesWhenStopped() const { return hidesWhenStopped_; }
    void setHidesWhenStopped(bool hides);
    /// White unless set.
    const UIColor& color() const { return color_; }
    void setColor(const UIColor& color);
    /// The spoke that is brightest now, 0 to 11, clockwise from the top.
    int leadingSpoke() const;

    UIAccessibilityTraits accessibilityTraits() const override;
    CGSize intrinsicContentSize() const override { return {28, 28}; }
    void drawRect(Canvas& canvas, const CGRect& bounds) override;
    bool drawsContent() const override { return true; }
    void didMoveToWindow() override;

protected:
    bool isElementByNature() const override { return animating_; }

private:
    void scheduleStep();
    void cancelStep();
    void step();

    UIColor color_ = UIColor::whiteColor();
    double startTime_ = 0;
    MainQueue::Token pendingStep_ = 0;
    bool animating_ = false, hidesWhenStopped_ = true, stepIsPending_ = false;
};

}  // namespace flarebox
