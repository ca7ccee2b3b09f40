#include <Foundation/NSNotificationCenter.h>
#include <UIKit/UIPalette.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace flarebox {
namespace {

struct Colour {
    std::string_view name;
    UIColor color;
};
constexpr Colour colours[] = {{"panel", UIColor::rgb(0x13151A)},         {"strip", UIColor::rgb(0x0D0F13)},
                              {"surface", UIColor::rgb(0x1E222A)},       {"content", UIColor::rgb(0x000000)},
                              {"text", UIColor::rgb(0xF4F6F8)},          {"secondaryText", UIColor::rgb(0xA9B1BD)},
                              {"disabledSign", UIColor::rgb(0x7A818C)},  {"decoration", UIColor::rgb(0x616A7B)},
                              {"placeholder", UIColor::rgb(0x5C6475)},   {"accent", UIColor::rgb(0xFF6A3D)},
                              {"action", UIColor::rgb(0xC8451F)},        {"actionText", UIColor::whiteColor()},
                              {"buttonText", UIColor::whiteColor()},     {"disabledText", UIColor::lightGrayColor()},
                              {"ring", UIColor::whiteColor()},           {"error", UIColor::rgb(0xFF8A80)},
                              {"success", UIColor::rgb(0x3DDC97)},       {"openButton", UIColor::rgb(0x13151A)},
                              {"openButtonText", UIColor::rgb(0xFF6A3D)}};
static_assert(std::size(colours) == UIPalette::shadeCount);

struct Radius {
    std::string_view name;
    CGFloat points;
};
/// A button's is more than half of any: its ends are half circles.
constexpr Radius radii[] = {{"panel", 14}, {"button", 99}, {"picture", 10}, {"message", 8}, {"openButton", 12}};
static_assert(std::size(radii) == UIPalette::cornerCount);

constexpr std::array<std::string_view, UIPalette::typefaceCount> typefaces = {"text", "title", "button"};

template <std::size_t N, class Entry>
constexpr std::array<std::string_view, N> namesOf(const Entry (&entries)[N]) {
    std::array<std::string_view, N> names;
    for (std::size_t i = 0; i < N; ++i) names[i] = entries[i].name;
    return names;
}
constexpr auto colourNames = namesOf(colours);
constexpr auto radiusNames = namesOf(radii);

template <class Kind>
std::optional<Kind> valueNamed(std::span<const std::string_view> names, std::string_view name) {
    const auto found = std::ranges::find(names, name);
    if (found == names.end()) return std::nullopt;
    return static_cast<Kind>(found - names.begin());
}

UIPalette& paletteInForce() {
    static UIPalette palette;
    return palette;
}

double luminance(const UIColor& color) {
    const auto linear = [](float part) {
        return part <= 0.04045F ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

UIColor over(const UIColor& color, const UIColor& background) {
    const auto mixed = [&](float top, float bottom) { return top * color.alpha + bottom * (1 - color.alpha); };
    return {mixed(color.red, background.red), mixed(color.green, background.green), mixed(color.blue, background.blue),
            1};
}

}  // namespace

UIPalette::UIPalette() {
    for (std::size_t i = 0; i < shadeCount; ++i) colors_[i] = colours[i].color;
    for (std::size_t i = 0; i < cornerCount; ++i) radii_[i] = radii[i].points;
}

const UIPalette& UIPalette::current() {
    return paletteInForce();
}

void UIPalette::setCurrent(const UIPalette& palette) {
    paletteInForce() = palette;
    NSNotificationCenter::defaultCenter().postNotificationName(UIPaletteDidChangeNotification);
}

void UIPalette::setRadius(Corner corner, CGFloat radius) {
    radii_[static_cast<std::size_t>(corner)] = std::isnan(radius) ? 0 : std::clamp(radius, 0.0, largestRadius);
}

UIFont UIPalette::font(Typeface typeface, CGFloat size, UIFontWeight weight) const {
    return UIFont::fontWithFamily(families_[static_cast<std::size_t>(typeface)], size, weight);
}

void UIPalette::setFamily(Typeface typeface, std::string family) {
    families_[static_cast<std::size_t>(typeface)] = std::move(family);
}

std::span<const std::string_view> UIPalette::shadeNames() {
    return colourNames;
}
std::span<const std::string_view> UIPalette::cornerNames() {
    return radiusNames;
}
std::span<const std::string_view> UIPalette::typefaceNames() {
    return typefaces;
}

std::optional<UIPalette::Shade> UIPalette::shadeNamed(std::string_view name) {
    return valueNamed<Shade>(colourNames, name);
}
std::optional<UIPalette::Corner> UIPalette::cornerNamed(std::string_view name) {
    return valueNamed<Corner>(radiusNames, name);
}
std::optional<UIPalette::Typeface> UIPalette::typefaceNamed(std::string_view name) {
    return valueNamed<Typeface>(typefaces, name);
}

double contrastRatio(const UIColor& text, const UIColor& background) {
    const UIColor ground = over(background, UIColor::blackColor());
    const double one = luminance(over(text, ground)), other = luminance(ground);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

}  // namespace flarebox
