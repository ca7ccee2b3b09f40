#include <UIKit/LayoutFiles/LayoutValues.h>

#include <charconv>
#include <cmath>

namespace flarebox::layout {
namespace {

std::optional<UIColor> hexColor(std::string_view digits) {
    if (digits.size() != 6 && digits.size() != 8) return std::nullopt;
    std::uint32_t value = 0;
    const char* end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, value, 16);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    if (digits.size() == 6) return UIColor::rgb(value);
    return UIColor::rgb(value >> 8, static_cast<float>(value & 255) / 255);
}

std::optional<UIColor> fixedColor(std::string_view name) {
    static constexpr std::pair<std::string_view, UIColor> colors[] = {{"clear", UIColor::clearColor()},
                                                                      {"white", UIColor::whiteColor()},
                                                                      {"black", UIColor::blackColor()},
                                                                      {"lightGray", UIColor::lightGrayColor()}};
    return choice(name, colors);
}

/// The last word of a colour, where there are two.
std::optional<float> opacity(std::string_view word) {
    if (!word.ends_with('%')) return std::nullopt;
    const auto percent = number(word.substr(0, word.size() - 1));
    if (!percent || *percent < 0 || *percent > 100) return std::nullopt;
    return static_cast<float>(*percent / 100);
}

}  // namespace

std::vector<std::string_view> words(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    std::vector<std::string_view> result;
    for (auto begin = text.find_first_not_of(blanks); begin != std::string_view::npos;) {
        const auto end = std::min(text.find_first_of(blanks, begin), text.size());
        result.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(blanks, end);
    }
    return result;
}

std::optional<bool> boolean(std::string_view text) {
    if (text == "true") return true;
    if (text == "false") return false;
    return std::nullopt;
}

std::optional<CGFloat> number(std::string_view text) {
    CGFloat value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<CGFloat> length(std::string_view text) {
    const auto value = number(text);
    return value && *value >= 0 ? value : std::nullopt;
}

std::optional<int> wholeNumber(std::string_view text) {
    int value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || value < 0) return std::nullopt;
    return value;
}

std::optional<CGFloat> share(std::string_view text) {
    const auto value = number(text);
    return value && *value >= 0 && *value <= 1 ? value : std::nullopt;
}

std::optional<std::vector<CGFloat>> numbers(std::string_view text, std::size_t count) {
    std::vector<CGFloat> values;
    for (std::string_view word : words(text)) {
        const auto value = number(word);
        if (!value) return std::nullopt;
        values.push_back(*value);
    }
    if (values.size() != count) return std::nullopt;
    return values;
}

std::optional<CGRect> rect(std::string_view text) {
    const auto values = numbers(text, 4);
    if (!values || (*values)[2] < 0 || (*values)[3] < 0) return std::nullopt;
    return CGRectMake((*values)[0], (*values)[1], (*values)[2], (*values)[3]);
}

std::optional<UIEdgeInsets> insets(std::string_view text) {
    const auto values = numbers(text, 4);
    if (!values) return std::nullopt;
    return UIEdgeInsets{(*values)[0], (*values)[1], (*values)[2], (*values)[3]};
}

std::optional<UIColor> color(std::string_view text) {
    const auto parts = words(text);
    if (parts.empty() || parts.size() > 2) return std::nullopt;
    const auto base = parts[0].starts_with('#') ? hexColor(parts[0].substr(1)) : fixedColor(parts[0]);
    if (!base || parts.size() == 1) return base;
    const auto alpha = opacity(parts[1]);
    return alpha ? std::optional(base->withAlpha(*alpha)) : std::nullopt;
}

UIColor NamedColor::value() const {
    if (!shade) return color;
    const UIColor& base = UIPalette::current().color(*shade);
    return alpha ? base.withAlpha(*alpha) : base;
}

bool NamedRadii::followsPalette() const {
    return topLeft.corner || topRight.corner || bottomRight.corner || bottomLeft.corner;
}

CornerRadii NamedRadii::value() const {
    return {topLeft.value(), topRight.value(), bottomRight.value(), bottomLeft.value()};
}

UIFont NamedFont::value() const {
    return typeface ? UIPalette::current().font(*typeface, font.pointSize(), font.weight()) : font;
}

std::optional<NamedColor> namedColor(std::string_view text) {
    const auto parts = words(text);
    const auto shade = parts.empty() ? std::nullopt : UIPalette::shadeNamed(parts[0]);
    if (!shade) {
        const auto own = color(text);
        return own ? std::optional(NamedColor{{}, *own, {}}) : std::nullopt;
    }
    if (parts.size() == 1) return NamedColor{shade, {}, {}};
    const auto alpha = parts.size() == 2 ? opacity(parts[1]) : std::nullopt;
    return alpha ? std::optional(NamedColor{shade, {}, alpha}) : std::nullopt;
}

std::optional<NamedRadius> namedRadius(std::string_view text) {
    if (const auto corner = UIPalette::cornerNamed(text)) return NamedRadius{corner, 0};
    const auto own = length(text);
    return own ? std::optional(NamedRadius{{}, *own}) : std::nullopt;
}

std::optional<NamedRadii> namedRadii(std::string_view text) {
    std::vector<NamedRadius> radii;
    for (std::string_view word : words(text)) {
        const auto radius = namedRadius(word);
        if (!radius) return std::nullopt;
        radii.push_back(*radius);
    }
    if (radii.size() != 4) return std::nullopt;
    return NamedRadii{radii[0], radii[1], radii[2], radii[3]};
}

std::optional<NamedFont> namedFont(std::string_view text) {
    static constexpr std::pair<std::string_view, UIFontWeight> weights[] = {{"regular", UIFontWeight::Regular},
                                                                            {"medium", UIFontWeight::Medium},
                                                                            {"semibold", UIFontWeight::Semibold},
                                                                            {"bold", UIFontWeight::Bold}};
    const auto parts = words(text);
    if (parts.size() < 2 || parts.size() > 3) return std::nullopt;
    const auto size = number(parts.back());
    if (!size || *size <= 0) return std::nullopt;
    const auto typeface = UIPalette::typefaceNamed(parts[0]);
    if (!typeface && parts[0] != "system")
        return parts.size() == 2 ? std::optional(NamedFont{{}, UIFont::fontWithName(parts[0], *size)}) : std::nullopt;
    const auto weight = parts.size() == 3 ? choice(parts[1], weights) : UIFontWeight::Regular;
    if (!weight) return std::nullopt;
    return NamedFont{typeface, UIFont::systemFontOfSize(*size, *weight)};
}

std::optional<UILayoutPriority> priority(std::string_view text) {
    static constexpr std::pair<std::string_view, UILayoutPriority> names[] = {{"required", UILayoutPriorityRequired},
                                                                              {"high", UILayoutPriorityDefaultHigh},
                                                                              {"low", UILayoutPriorityDefaultLow}};
    if (const auto named = choice(text, names)) return named;
    const auto value = number(text);
    if (!value || *value < 1 || *value > UILayoutPriorityRequired) return std::nullopt;
    return static_cast<UILayoutPriority>(*value);
}

}  // namespace flarebox::layout
