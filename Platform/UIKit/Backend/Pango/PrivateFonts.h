#pragma once

#include <UIKit/Backend/Pango/GReference.h>
#include <UIKit/UIFont.h>

#include <pango/pango.h>

namespace flarebox::text {

/// Distances from a line's upper edge, in points.
struct LineMetrics {
    CGFloat baseline = 0, height = 0;
};

/// The fonts of the machine, looked up by rules of our own, so that the settings of a user or a distribution change no
/// text. Not thread-safe: for use under the lock of the text layouts.
class PrivateFonts {
public:
    PrivateFonts();

    /// For new layouts; null when the machine has no font at all, which texts must survive.
    PangoContext* context() const { return context_.get(); }
    static PangoFontDescription* newDescription(const UIFont& font);
    LineMetrics lineMetrics(const UIFont& font) const;
    /// Gives the memory of all fonts back that no layout uses; they are opened again when needed.
    void closeUnused();

private:
    GReference<PangoFontMap> map_;
    GReference<PangoContext> context_;
};

}  // namespace flarebox::text
