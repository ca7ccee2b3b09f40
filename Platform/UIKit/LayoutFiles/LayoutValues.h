#pragma once

#include <UIKit/Canvas.h>
#include <UIKit/Geometry.h>
#include <UIKit/NSLayoutConstraint.h>
#include <UIKit/UIFont.h>
#include <UIKit/UIPalette.h>

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace flarebox::layout {

// The texts of layout files as values. All answer nothing for a text that is not wholly such a value, whatever the
// locale.

/// The words of a text, separated by blanks.
std::vector<std::string_view> words(std::string_view text);

std::optional<bool> boolean(std::string_view text);
std::optional<CGFloat> number(std::string_view text);
/// 0 or more.
std::optional<CGFloat> length(std::string_view text);
std::optional<int> wholeNumber(std::string_view text);
/// 0 to 1.
std::optional<CGFloat> share(std::string_view text);
/// Exactly that many numbers, or nothing.
std::optional<std::vector<CGFloat>> numbers(std::string_view text, std::size_t count);
std::optional<CGRect> rect(std::string_view text);
std::optional<UIEdgeInsets> insets(std::string_view text);
/// `#RRGGBB`, `#RRGGBBAA` or the name of a colour that never changes, and an opacity in per cent if wanted.
std::optional<UIColor> color(std::string_view text);

// Values that may be called by their names in the palette, and are what it says when they are asked for.

struct NamedColor {
    /// None for a colour of its own.
    std::optional<UIPalette::Shade> shade;
    UIColor color;
    /// In place of the palette's.
    std::optional<float> alpha;

    bool followsPalette() const { return shade.has_value(); }
    UIColor value() const;
};
struct NamedRadius {
    std::optional<UIPalette::Corner> corner;
    CGFloat radius = 0;

    bool followsPalette() const { return corner.has_value(); }
    CGFloat value() const { return corner ? UIPalette::current().radius(*corner) : radius; }
};
struct NamedRadii {
    NamedRadius topLeft, topRight, bottomRight, bottomLeft;

    bool followsPalette() const;
    CornerRadii value() const;
};
struct NamedFont {
    std::optional<UIPalette::Typeface> typeface;
    UIFont font;

    bool followsPalette() const { return typeface.has_value(); }
    UIFont value() const;
};

/// What `color` reads, or `panel`, `panel 60%`, ….
std::optional<NamedColor> namedColor(std::string_view text);
/// Points, or `panel`, `picture`, ….
std::optional<NamedRadius> namedRadius(std::string_view text);
/// Four of these.
std::optional<NamedRadii> namedRadii(std::string_view text);
/// `system 16`, `system semibold 16`, the same with `text`, `title` or `button`, or `HelveticaNeue-Medium 25`.
std::optional<NamedFont> namedFont(std::string_view text);
std::optional<UILayoutPriority> priority(std::string_view text);

/// The value that stands beside the name.
template <class T, std::size_t N>
std::optional<T> choice(std::string_view text, const std::pair<std::string_view, T> (&choices)[N]) {
    for (const auto& [name, value] : choices) {
        if (name == text) return value;
    }
    return std::nullopt;
}

}  // namespace flarebox::layout
