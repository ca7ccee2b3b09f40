#include <UIKit/UIView.h>
#include <UIKit/UIViewState.h>

#include <algorithm>

namespace flarebox {

UIView::Accessibility& UIView::makeAccessibility() const {
    if (!accessibility_) accessibility_ = std::make_unique<Accessibility>();
    return *accessibility_;
}

bool UIView::isAccessibilityElement() const {
    const bool isSet = accessibility_ && accessibility_->isElement;
    return isSet ? *accessibility_->isElement : isElementByNature();
}

bool UIView::isElementByNature() const {
    return accessibility_ && !accessibility_->label.text().empty();
}

void UIView::setIsAccessibilityElement(bool isElement) {
    makeAccessibility().isElement = isElement;
}

NSString UIView::accessibilityLabel() const {
    return accessibility_ ? accessibility_->label : NSString();
}

void UIView::setAccessibilityLabel(const NSString& label) {
    makeAccessibility().label = label;
}

NSString UIView::accessibilityValue() const {
    return accessibility_ ? accessibility_->value : NSString();
}

void UIView::setAccessibilityValue(const NSString& value) {
    makeAccessibility().value = value;
}

UIAccessibilityTraits UIView::accessibilityTraits() const {
    return accessibility_ ? accessibility_->traits : UIAccessibilityTraits::None;
}

void UIView::setAccessibilityTraits(UIAccessibilityTraits traits) {
    makeAccessibility().traits = traits;
}

UIAccessibilityContainerType UIView::accessibilityContainerType() const {
    return accessibility_ ? accessibility_->containerType : UIAccessibilityContainerType::None;
}

void UIView::setAccessibilityContainerType(UIAccessibilityContainerType type) {
    makeAccessibility().containerType = type;
}

std::uint64_t UIView::accessibilityNumber() const {
    static std::uint64_t last = 0;
    std::uint64_t& number = makeAccessibility().number;
    if (number == 0) number = ++last;
    return number;
}

bool UIView::accessibilityActivate() {
    return false;
}

bool UIView::accessibilityAdjust(int) {
    return false;
}

UIView* UIView::nextResponder() const {
    UIView* const other = accessibility_ ? accessibility_->nextResponder.get() : nullptr;
    return other ? other : superview_;
}

void UIView::setNextResponder(UIView* responder) {
    makeAccessibility().nextResponder = Weak<UIView>(responder);
}

CGFloat UIView::focusRingRadius() const {
    const CornerRadii& radii = layer().cornerRadii();
    return std::max({radii.topLeft, radii.topRight, radii.bottomLeft, radii.bottomRight});
}

bool UIView::pressBegan(UIPressType type) {
    UIView* const next = nextResponder();
    return next && next->pressBegan(type);
}

bool UIView::stickHeld(CGPoint deflection, double seconds) {
    UIView* const next = nextResponder();
    return next && next->stickHeld(deflection, seconds);
}

}  // namespace flarebox
