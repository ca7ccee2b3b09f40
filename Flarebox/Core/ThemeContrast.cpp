#include <Flarebox/Core/ThemeContrast.h>
#include <UIKit/LayoutFiles/Suggestion.h>

#include <cstdio>

namespace flarebox {
namespace {

/// What most people need.
constexpr double ofTexts = 4.5, ofSigns = 3;

struct Pair {
    UIPalette::Shade front, background;
    double least;
};
using enum UIPalette::Shade;
constexpr Pair pairs[] = {
    {Text, Panel, ofTexts},
    {SecondaryText, Panel, ofTexts},
    {SecondaryText, Strip, ofTexts},
    {Accent, Strip, ofTexts},
    {SecondaryText, Content, ofTexts},
    {Text, Surface, ofTexts},
    {SecondaryText, Surface, ofTexts},
    {Accent, Surface, ofTexts},
    {ButtonText, Surface, ofTexts},
    {DisabledText, Surface, ofTexts},
    {Error, Surface, ofTexts},
    {ActionText, Action, ofTexts},
    {OpenButtonText, OpenButton, ofTexts},
    {Accent, Panel, ofSigns},
    {Ring, Panel, ofSigns},
    {Success, Panel, ofSigns},
    {Error, Panel, ofSigns},
    {DisabledSign, Panel, ofSigns},
    {DisabledSign, Strip, ofTexts},
    {Decoration, Panel, ofSigns},
    {Decoration, Content, ofSigns},
    {Placeholder, Content, ofSigns},
    {Text, Content, ofSigns},
};

std::string nameOf(UIPalette::Shade shade) {
    return layout::inQuotes(UIPalette::shadeNames()[static_cast<std::size_t>(shade)]);
}

std::string described(const Pair& pair, double contrast) {
    char ratio[64];
    std::snprintf(ratio, sizeof ratio, "%.1f to 1, less than %.1f", contrast, pair.least);
    return nameOf(pair.front) + " on " + nameOf(pair.background) + " has a contrast of " + ratio +
           "; move the two further apart";
}

}  // namespace

std::vector<PoorContrast> poorContrasts(const UIPalette& palette) {
    std::vector<PoorContrast> poor;
    for (const Pair& pair : pairs) {
        const double contrast = contrastRatio(palette.color(pair.front), palette.color(pair.background));
        if (contrast < pair.least) poor.push_back({pair.front, pair.background, described(pair, contrast)});
    }
    return poor;
}

}  // namespace flarebox
