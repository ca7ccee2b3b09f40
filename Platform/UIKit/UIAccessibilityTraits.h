#pragma once

#include <cstdint>

namespace flarebox {

/// What a view is and how it stands, in bits; the platform's numbers.
enum class UIAccessibilityTraits : std::uint32_t {
    None = 0,
    Button = 1 << 0,
    Image = 1 << 2,
    Selected = 1 << 3,
    StaticText = 1 << 6,
    NotEnabled = 1 << 8,
    UpdatesFrequently = 1 << 9,
    StartsMediaSession = 1 << 11,
    Adjustable = 1 << 12,
};
constexpr UIAccessibilityTraits operator|(UIAccessibilityTraits a, UIAccessibilityTraits b) {
    return static_cast<UIAccessibilityTraits>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}
constexpr UIAccessibilityTraits without(UIAccessibilityTraits set, UIAccessibilityTraits trait) {
    return static_cast<UIAccessibilityTraits>(static_cast<std::uint32_t>(set) & ~static_cast<std::uint32_t>(trait));
}
constexpr bool contains(UIAccessibilityTraits set, UIAccessibilityTraits trait) {
    return (static_cast<std::uint32_t>(set) & static_cast<std::uint32_t>(trait)) != 0;
}

/// What a view is whose elements belong together: a semantic group is told of through them only, the others by
/// themselves as well.
enum class UIAccessibilityContainerType : std::uint8_t { None, SemanticGroup, List, Alert };

}  // namespace flarebox
