#include <UIKit/CALayer.h>
#include <UIKit/UIView.h>

#include <algorithm>

namespace flarebox {

void CALayer::setBorderColor(const UIColor& color) {
    if (color == borderColor_) return;
    borderColor_ = color;
    view_.setNeedsDisplay();
}

void CALayer::setBorderWidth(CGFloat width) {
    width = std::max(0.0, width);
    if (width == borderWidth_) return;
    borderWidth_ = width;
    view_.setNeedsDisplay();
}

void CALayer::setCornerRadii(const CornerRadii& radii) {
    if (radii == radii_) return;
    radii_ = radii;
    view_.setNeedsDisplay();
}

void CALayer::setShadow(const Shadow& shadow) {
    if (shadow == shadow_) return;
    shadow_ = shadow;
    view_.setNeedsDisplay();
}

}  // namespace flarebox
