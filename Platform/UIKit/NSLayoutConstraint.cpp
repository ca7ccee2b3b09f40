#include <UIKit/LayoutEngine.h>
#include <UIKit/NSLayoutConstraint.h>
#include <UIKit/UIView.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace flarebox {
namespace {

std::string nameOf(const UIView* view) {
    if (!view) return "(gone)";
    if (!view->accessibilityIdentifier().empty()) return view->accessibilityIdentifier();
    return view->description();
}

const char* nameOf(NSLayoutAttribute attribute) {
    static constexpr const char* names[] = {"?",        "left",  "right",  "top",     "bottom", "leading",
                                            "trailing", "width", "height", "centerX", "centerY"};
    const auto index = static_cast<std::size_t>(attribute);
    return names[index < std::size(names) ? index : 0];
}

const char* nameOf(NSLayoutRelation relation) {
    if (relation == NSLayoutRelation::Equal) return "==";
    return relation == NSLayoutRelation::LessThanOrEqual ? "<=" : ">=";
}

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

}  // namespace

const ClassInfo& NSLayoutConstraint::staticClass() {
    static const ClassInfo info("NSLayoutConstraint", &NSObject::staticClass(), nullptr);
    return info;
}

NSLayoutConstraint::~NSLayoutConstraint() = default;

Ref<NSLayoutConstraint> NSLayoutConstraint::constraintWithItem(UIView& item, NSLayoutAttribute attribute,
                                                               NSLayoutRelation relatedBy, UIView* toItem,
                                                               NSLayoutAttribute toAttribute, CGFloat multiplier,
                                                               CGFloat constant) {
    auto constraint = make<NSLayoutConstraint>();
    constraint->firstItem_ = Weak<UIView>(&item);
    constraint->firstAttribute_ = attribute;
    constraint->relation_ = relatedBy;
    constraint->secondItem_ = Weak<UIView>(toItem);
    constraint->secondAttribute_ = toAttribute;
    constraint->multiplier_ = multiplier;
    constraint->constant_ = constant;
    return constraint;
}

UIView* NSLayoutConstraint::firstItem() const {
    return heldFirst_ ? heldFirst_ : firstItem_.get();
}
UIView* NSLayoutConstraint::secondItem() const {
    return heldSecond_ ? heldSecond_ : secondItem_.get();
}

void NSLayoutConstraint::setConstant(CGFloat constant) {
    if (constant == constant_ || !std::isfinite(constant)) return;
    constant_ = constant;
    if (!engine_) return;
    engine_->constantChanged(*this);
    owner_->setNeedsLayout();
}

void NSLayoutConstraint::setPriority(UILayoutPriority priority) {
    priority = priority >= 1 ? std::min(priority, UILayoutPriorityRequired) : 1;
    if (priority == priority_) return;
    priority_ = priority;
    if (!engine_) return;
    engine_->priorityChanged(*this);
    owner_->setNeedsLayout();
}

const char* NSLayoutConstraint::reasonToRefuse(const UIView& owner) const {
    const UIView *first = firstItem(), *second = secondItem();
    if (!first || firstAttribute_ == NSLayoutAttribute::NotAnAttribute) return "it has no first item or attribute";
    if (!second && secondAttribute_ != NSLayoutAttribute::NotAnAttribute)
        return "it has an attribute of no second item";
    if (second && secondAttribute_ == NSLayoutAttribute::NotAnAttribute)
        return "it has a second item but no attribute of it";
    if (!std::isfinite(constant_) || !std::isfinite(multiplier_)) return "its numbers are not finite";
    const bool isInside = first->isDescendantOfView(owner) && (!second || second->isDescendantOfView(owner));
    return isInside ? nullptr : "its items are not the view that is to hold it or below that view";
}

std::string NSLayoutConstraint::description() const {
    std::string text = nameOf(firstItem()) + "." + nameOf(firstAttribute_) + " " + nameOf(relation_) + " ";
    if (secondAttribute_ == NSLayoutAttribute::NotAnAttribute) {
        text += number(constant_);
    } else {
        text += nameOf(secondItem()) + "." + nameOf(secondAttribute_);
        if (multiplier_ != 1) text += " * " + number(multiplier_);
        if (constant_ != 0) text += (constant_ < 0 ? " - " : " + ") + number(std::abs(constant_));
    }
    if (priority_ < UILayoutPriorityRequired) text += " (priority " + number(priority_) + ")";
    if (identifier_) text += ", " + identifier_.string();
    return "<NSLayoutConstraint: " + text + ">";
}

}  // namespace flarebox
