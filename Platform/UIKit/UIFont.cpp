#include <UIKit/UIFont.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace flarebox {
namespace {

// Beyond these a size is a mistake, and a font that large would take the machine's memory.
constexpr CGFloat smallestSize = 1, largestSize = 512;

CGFloat usableSize(CGFloat size) {
    if (std::isnan(size)) return smallestSize;
    return std::clamp(size, smallestSize, largestSize);
}

constexpr std::array<std::pair<std::string_view, UIFontWeight>, 8> weightNames = {{
    {"Light", UIFontWeight::Regular},
    {"Regular", UIFontWeight::Regular},
    {"Medium", UIFontWeight::Medium},
    {"Semibold", UIFontWeight::Semibold},
    {"SemiBold", UIFontWeight::Semibold},
    {"DemiBold", UIFontWeight::Semibold},
    {"Bold", UIFontWeight::Bold},
    {"Heavy", UIFontWeight::Bold},
}};

UIFontWeight weightFromName(std::string_view name) {
    for (const auto& [known, weight] : weightNames)
        if (known == name) return weight;
    return UIFontWeight::Regular;
}

/// The family of that name, or empty for the names that stand for the system font.
std::string familyFromName(std::string_view name) {
    if (name.starts_with("Helvetica") || name == "System" || name == "SanFrancisco") return {};
    return std::string(name);
}

}  // namespace

UIFont UIFont::fontWithName(std::string_view name, CGFloat size) {
    const auto hyphen = name.rfind('-');
    UIFont font;
    font.family_ = familyFromName(name.substr(0, hyphen));
    font.weight_ = hyphen == std::string_view::npos ? UIFontWeight::Regular : weightFromName(name.substr(hyphen + 1));
    font.size_ = usableSize(size);
    return font;
}

UIFont UIFont::systemFontOfSize(CGFloat size, UIFontWeight weight) {
    return fontWithFamily({}, size, weight);
}

UIFont UIFont::fontWithFamily(std::string_view family, CGFloat size, UIFontWeight weight) {
    UIFont font;
    font.family_ = family;
    font.weight_ = weight;
    font.size_ = usableSize(size);
    return font;
}

UIFont UIFont::fontWithSize(CGFloat size) const {
    UIFont font = *this;
    font.size_ = usableSize(size);
    return font;
}

}  // namespace flarebox
