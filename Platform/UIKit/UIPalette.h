#pragma once

#include <Foundation/Export.h>
#include <UIKit/Geometry.h>
#include <UIKit/UIFont.h>

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace flarebox {

/// The colours, corner radii and typefaces that layout files and the platform's own controls call by name, so that all
/// of a brand's look is in one place. A plain value; one is in force at a time. Main thread.
class FLAREBOX_EXPORT UIPalette {
public:
    /// A colour, by where it stands.
    enum class Shade : std::uint8_t {
        Panel,           ///< behind everything
        Strip,           ///< behind the buttons at the panel's right
        Surface,         ///< secondary buttons, messages, alerts, pictures that are awaited
        Content,         ///< behind pictures, models and videos
        Text,            ///< titles and messages
        SecondaryText,   ///< descriptions, and signs that can be pressed
        DisabledSign,    ///< signs that cannot be pressed
        Decoration,      ///< large signs where there is nothing to show
        Placeholder,     ///< the sign in place of a picture
        Accent,          ///< the brand's mark, and what is selected
        Action,          ///< the button that matters most
        ActionText,      ///< its title
        ButtonText,      ///< titles and borders of the other buttons
        DisabledText,    ///< those of buttons that cannot be pressed
        Ring,            ///< around the selected product
        Error,           ///< messages of failures
        Success,         ///< the sign that something was saved
        OpenButton,      ///< behind the open button's sign
        OpenButtonText,  ///< that sign, and the text along the button
    };
    static constexpr std::size_t shadeCount = 19;  ///< of them
    /// What has round corners.
    enum class Corner : std::uint8_t { Panel, Button, Picture, Message, OpenButton };
    static constexpr std::size_t cornerCount = 5;   ///< of them
    static constexpr CGFloat largestRadius = 1000;  ///< in points
    /// What has a typeface of its own; Text is everything but the others.
    enum class Typeface : std::uint8_t { Text, Title, Button };
    static constexpr std::size_t typefaceCount = 3;  ///< of them

    /// The platform's own look.
    UIPalette();

    /// What views show.
    static const UIPalette& current();
    /// Posts UIPaletteDidChangeNotification: everything made from a layout file follows at once; alerts and players
    /// follow when they are shown next.
    static void setCurrent(const UIPalette& palette);

    /// Opaque unless it was set otherwise.
    const UIColor& color(Shade shade) const { return colors_[static_cast<std::size_t>(shade)]; }
    /// Takes any: what is to be seen well needs a `contrastRatio` to what lies behind it.
    void setColor(Shade shade, const UIColor& color) { colors_[static_cast<std::size_t>(shade)] = color; }
    /// In points, 0 for square corners.
    CGFloat radius(Corner corner) const { return radii_[static_cast<std::size_t>(corner)]; }
    /// From 0 to largestRadius; what is beyond is moved there, and what is no number is 0.
    void setRadius(Corner corner, CGFloat radius);
    /// Of that size in points.
    UIFont font(Typeface typeface, CGFloat size, UIFontWeight weight = UIFontWeight::Regular) const;
    /// Of a family that is installed, or that a font file has brought; empty for the system font.
    void setFamily(Typeface typeface, std::string family);

    /// The names in layout files and themes, in the order of the values: "panel", "secondaryText", ….
    static std::span<const std::string_view> shadeNames();
    static std::span<const std::string_view> cornerNames();    ///< in the order of Corner
    static std::span<const std::string_view> typefaceNames();  ///< in the order of Typeface
    /// Nothing for a name that is none of them.
    static std::optional<Shade> shadeNamed(std::string_view name);
    static std::optional<Corner> cornerNamed(std::string_view name);      ///< likewise
    static std::optional<Typeface> typefaceNamed(std::string_view name);  ///< likewise

    friend bool operator==(const UIPalette&, const UIPalette&) = default;

private:
    std::array<UIColor, shadeCount> colors_;
    std::array<CGFloat, cornerCount> radii_;
    std::array<std::string, typefaceCount> families_;
};

/// Posted on the main thread when a palette has come into force.
inline constexpr const char* UIPaletteDidChangeNotification = "UIPaletteDidChangeNotification";

/// How well a text on a background can be read: from 1, not at all, to 21, black on white. What is beneath a background
/// that is not opaque is taken to be black.
FLAREBOX_EXPORT double contrastRatio(const UIColor& text, const UIColor& background);

}  // namespace flarebox
