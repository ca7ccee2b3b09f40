#pragma once

#include <UIKit/UIPalette.h>

#include <string>
#include <vector>

namespace flarebox {

/// Two colours of a palette that stand on each other and are too much alike.
struct PoorContrast {
    UIPalette::Shade front, background;
    /// `"text" on "panel" has a contrast of 2.1 to 1, less than 4.5`, and what to do.
    std::string text;
};

/// Of all that the kit shows: texts need 4.5 to 1, signs and lines 3 to 1.
std::vector<PoorContrast> poorContrasts(const UIPalette& palette);

}  // namespace flarebox
