#include <Foundation/LogSink.h>
#include <UIKit/UIControl.h>

#include <UIKit/UITouch.h>

#include <algorithm>

namespace flarebox {

const ClassInfo& UIControl::staticClass() {
    static const ClassInfo info("UIControl", &UIView::staticClass(), createObject<UIControl>);
    return info;
}

UIControl::UIControl() = default;
UIControl::~UIControl() = default;

void UIControl::change(bool& flag, bool value) {
    if (flag == value) return;
    flag = value;
    stateChanged();
}

void UIControl::stateChanged() {
    setNeedsDisplay();
}

void UIControl::setEnabled(bool enabled) {
    if (!enabled) endTracking();
    change(enabled_, enabled);
}

void UIControl::setSelected(bool selected) {
    change(selected_, selected);
}
void UIControl::setHighlighted(bool highlighted) {
    change(highlighted_, highlighted);
}
void UIControl::pointerEntered() {
    change(hovered_, true);
}
void UIControl::pointerExited() {
    change(hovered_, false);
}

UIControlState UIControl::state() const {
    const auto bit = [](bool flag, UIControlState state) { return flag ? static_cast<unsigned>(state) : 0U; };
    return static_cast<UIControlState>(bit(highlighted_, UIControlState::Highlighted) |
                                       bit(!enabled_, UIControlState::Disabled) |
                                       bit(selected_, UIControlState::Selected));
}

void UIControl::addTarget(NSObject& target, std::string_view selector, UIControlEvents events) {
    if (!target.respondsToSelector(selector))
        LogSink::write(LogLevelError, target.description() + " has no action \"" + std::string(selector) +
                                          "\"; pressing a control will do nothing");
    for (Registration& known : registrations_) {
        if (known.target.get() != &target || known.selector != selector) continue;
        known.events = known.events | events;
        return;
    }
    registrations_.push_back({Weak<NSObject>(&target), std::string(selector), nullptr, events});
}

void UIControl::removeTarget(NSObject& target, std::string_view selector) {
    std::erase_if(registrations_, [&](const Registration& known) {
        return known.target.get() == &target && known.selector == selector;
    });
}

void UIControl::addAction(std::function<void()> action, UIControlEvents events) {
    registrations_.push_back({nullptr, {}, std::move(action), events});
}

void UIControl::sendActions(UIControlEvents events) {
    // An action may remove targets, or the control itself.
    const Ref<UIControl> self(this);
    const std::vector<Registration> registrations = registrations_;
    for (const Registration& registration : registrations) {
        if (!contains(registration.events, events)) continue;
        if (registration.action)
            registration.action();
        else if (const auto target = registration.target.lock())
            target->performSelector(registration.selector, this);
    }
}

UIAccessibilityTraits UIControl::accessibilityTraits() const {
    using enum UIAccessibilityTraits;
    return UIView::accessibilityTraits() | (enabled_ ? None : NotEnabled) | (selected_ ? Selected : None);
}

bool UIControl::accessibilityActivate() {
    if (!enabled_) return false;
    sendActions(UIControlEvents::TouchUpInside);
    return true;
}

bool UIControl::pointInside(CGPoint point) const {
    const CGRect area = bounds();
    const auto missing = [this](CGFloat side) { return std::max(0.0, minimumHitSize_ - side) / 2; };
    return area.inset(-missing(area.width()), -missing(area.height())).contains(point);
}

bool UIControl::isNear(UITouch& touch) const {
    return bounds().inset(-touchSlop, -touchSlop).contains(touch.locationInView(this));
}

void UIControl::touchesBegan(UITouch&) {
    if (!enabled_ || tracking_) return;
    tracking_ = true;
    setHighlighted(true);
    sendActions(UIControlEvents::TouchDown);
}

void UIControl::touchesMoved(UITouch& touch) {
    if (!tracking_) return;
    const bool near = isNear(touch);
    setHighlighted(near);
    sendActions(near ? UIControlEvents::TouchDragInside : UIControlEvents::TouchDragOutside);
}

void UIControl::touchesEnded(UITouch& touch) {
    if (!tracking_) return;
    const bool near = isNear(touch);
    endTracking();
    sendActions(near ? UIControlEvents::TouchUpInside : UIControlEvents::TouchUpOutside);
}

void UIControl::touchesCancelled(UITouch&) {
    if (!tracking_) return;
    endTracking();
    sendActions(UIControlEvents::TouchCancel);
}

void UIControl::endTracking() {
    tracking_ = false;
    setHighlighted(false);
}

}  // namespace flarebox
