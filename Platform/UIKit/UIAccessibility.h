#pragma once

#include <Foundation/Export.h>
#include <Foundation/Values.h>
#include <UIKit/UIAccessibilityTraits.h>
#include <UIKit/UIView.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace flarebox {

class UIWindow;

/// The one word for what an element is, as the interfaces of desktop systems want it. Progress is something under way
/// of which no end is known.
enum class UIAccessibilityRole : std::uint8_t {
    None,
    Text,
    Button,
    Image,
    Adjustable,
    Video,
    Progress,
    List,
    ListItem,
    Alert
};
/// "button", "list item", …; "" for None.
FLAREBOX_EXPORT std::string_view nameOf(UIAccessibilityRole role);

/// Something in a window that assistive technology tells of, as it is at this moment.
struct UIAccessibilityElement {
    Ref<UIView> view;                                            ///< never null
    NSString label;                                              ///< its name in the player's language
    NSString value;                                              ///< what it stands at; absent for most
    UIAccessibilityTraits traits = UIAccessibilityTraits::None;  ///< in bits
    UIAccessibilityRole role = UIAccessibilityRole::None;        ///< the same in one word
    /// The part that can be seen, in points of the window.
    CGRect frame;
};

/// What is in sight and not covered, in reading order: row by row from the top, each from the left. What lies in a
/// container follows it, before everything else. Main thread.
FLAREBOX_EXPORT std::vector<UIAccessibilityElement> accessibilityElementsOf(UIWindow& window);

/// Whether the player wants nothing to move by itself; false unless the host says so.
bool UIAccessibilityIsReduceMotionEnabled();
void UIAccessibilitySetReduceMotion(bool reduce);

/// Where in the window the view can be seen, as it is shown now: cut to the window and to what clips it. Empty when
/// nowhere.
CGRect visibleRectOf(const UIView& view);
/// A point of the window at which nothing lies over the view: its middle unless that is covered; a touch there reaches
/// a view that takes touches. Absent when there is none.
std::optional<CGPoint> uncoveredPointOf(UIView& view);

}  // namespace flarebox
