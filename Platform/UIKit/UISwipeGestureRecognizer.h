#pragma once

#include <UIKit/Geometry.h>
#include <UIKit/UIGestureRecognizer.h>

namespace flarebox {

enum UISwipeGestureRecognizerDirection : std::uint32_t {
    UISwipeGestureRecognizerDirectionRight = 1,
    UISwipeGestureRecognizerDirectionLeft = 2,
    UISwipeGestureRecognizerDirectionUp = 4,
    UISwipeGestureRecognizerDirectionDown = 8,
};

/// A quick, mostly straight movement: at least 50 points within half a second. Recognises once a touch.
class UISwipeGestureRecognizer : public UIGestureRecognizer {
    FLAREBOX_CLASS(UISwipeGestureRecognizer)
public:
    using UIGestureRecognizer::UIGestureRecognizer;
    static Ref<UISwipeGestureRecognizer> initWithTarget(NSObject& target, std::string_view action);

    /// Bits of UISwipeGestureRecognizerDirection; to the right unless set.
    std::uint32_t direction() const { return directions_; }
    void setDirection(std::uint32_t directions) { directions_ = directions; }

    void touchesBegan(UITouch& touch) override;
    void touchesMoved(UITouch& touch) override;
    void touchesEnded(UITouch& touch) override;

private:
    std::uint32_t directions_ = UISwipeGestureRecognizerDirectionRight;
    CGPoint start_;
    double startTime_ = 0;
};

}  // namespace flarebox
