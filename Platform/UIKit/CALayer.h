#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSObject.h>
#include <UIKit/Canvas.h>
#include <UIKit/Geometry.h>

namespace flarebox {

class UIView;

/// The look of a view's own rectangle and the bitmap it was last drawn into. Owned by its view.
class FLAREBOX_EXPORT CALayer {
public:
    explicit CALayer(UIView& view) : view_(view) {}
    CALayer(const CALayer&) = delete;
    CALayer& operator=(const CALayer&) = delete;

    const UIColor& borderColor() const { return borderColor_; }
    void setBorderColor(const UIColor& color);
    CGFloat borderWidth() const { return borderWidth_; }
    void setBorderWidth(CGFloat width);
    /// Rounds the background, the border and what the view itself draws; sub-views are clipped to the rectangle only.
    CGFloat cornerRadius() const { return radii_.topLeft; }
    void setCornerRadius(CGFloat radius) { setCornerRadii(CornerRadii::all(radius)); }
    const CornerRadii& cornerRadii() const { return radii_; }
    void setCornerRadii(const CornerRadii& radii);
    /// A soft shadow around the rounded rectangle, drawn outside the view's bounds.
    struct Shadow {
        CGFloat radius = 0;
        CGPoint offset;
        UIColor color;
        friend bool operator==(const Shadow&, const Shadow&) = default;
    };
    const Shadow& shadow() const { return shadow_; }
    void setShadow(const Shadow& shadow);

private:
    UIView& view_;
    UIColor borderColor_ = UIColor::blackColor();
    CGFloat borderWidth_ = 0;
    CornerRadii radii_;
    Shadow shadow_;
};

}  // namespace flarebox
