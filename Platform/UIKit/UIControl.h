#pragma once

#include <UIKit/UIView.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox {

/// Bits; a control can be in several states at once.
enum class UIControlState : std::uint8_t { Normal = 0, Highlighted = 1, Disabled = 2, Selected = 4 };
constexpr bool contains(UIControlState set, UIControlState state) {
    return (static_cast<unsigned>(set) & static_cast<unsigned>(state)) != 0;
}

/// Bits, the platform's numbers.
enum class UIControlEvents : std::uint32_t {
    TouchDown = 1 << 0,
    TouchDragInside = 1 << 2,
    TouchDragOutside = 1 << 3,
    TouchUpInside = 1 << 6,
    TouchUpOutside = 1 << 7,
    TouchCancel = 1 << 8,
    ValueChanged = 1 << 12,
};
constexpr UIControlEvents operator|(UIControlEvents a, UIControlEvents b) {
    return static_cast<UIControlEvents>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}
constexpr bool contains(UIControlEvents set, UIControlEvents event) {
    return (static_cast<std::uint32_t>(set) & static_cast<std::uint32_t>(event)) != 0;
}

/// A view that is pressed and tells others about it. A press counts where it ends on the control or a little beside it.
/// Main thread only.
///
/// Set by layout files: `enabled`, `selected`, `minimumHitSize`, and an action by its selector.
class UIControl : public UIView {
    FLAREBOX_CLASS(UIControl)
public:
    /// Distance in points from the control within which a press still counts.
    static constexpr CGFloat touchSlop = 20;

    UIControl();
    ~UIControl() override;

    /// A disabled control swallows touches.
    bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled);
    bool isSelected() const { return selected_; }
    void setSelected(bool selected);
    /// While a touch that would count is on the control.
    bool isHighlighted() const { return highlighted_; }
    void setHighlighted(bool highlighted);
    /// While the pointer rests over the control with no button pressed.
    bool isHovered() const { return hovered_; }
    UIControlState state() const;

    /// Performs the target's action of that name, with the control as its argument, at each of the events. The target
    /// is held weakly. The same target and action may be added once only.
    void addTarget(NSObject& target, std::string_view selector, UIControlEvents events);
    void removeTarget(NSObject& target, std::string_view selector);
    /// For code without a target object.
    void addAction(std::function<void()> action, UIControlEvents events);
    /// Performs what is registered for the events, in the order it was added.
    void sendActions(UIControlEvents events);

    /// Smallest side, in points, of the area that takes touches, around the middle of a control that is drawn smaller.
    /// 32 unless set.
    CGFloat minimumHitSize() const { return minimumHitSize_; }
    void setMinimumHitSize(CGFloat size) { minimumHitSize_ = size; }

    /// Disabled, selected, and what was set.
    UIAccessibilityTraits accessibilityTraits() const override;
    /// Presses an enabled control.
    bool accessibilityActivate() override;
    bool canBecomeFocused() const override { return enabled_; }
    bool pointInside(CGPoint point) const override;
    void touchesBegan(UITouch& touch) override;
    void touchesMoved(UITouch& touch) override;
    void touchesEnded(UITouch& touch) override;
    void touchesCancelled(UITouch& touch) override;
    void pointerEntered() override;
    void pointerExited() override;

protected:
    /// After any part of the state changed. The default asks for a redraw.
    virtual void stateChanged();
    bool isElementByNature() const override { return true; }

private:
    struct Registration {
        Weak<NSObject> target;
        std::string selector;
        std::function<void()> action;
        UIControlEvents events;
    };
    void change(bool& flag, bool value);
    bool isNear(UITouch& touch) const;
    void endTracking();

    std::vector<Registration> registrations_;
    CGFloat minimumHitSize_ = 32;
    bool enabled_ = true, selected_ = false, highlighted_ = false, hovered_ = false, tracking_ = false;
};

}  // namespace flarebox
