#pragma once

#include <UIKit/Backend/Pango/GReference.h>
#include <UIKit/UIFont.h>

#include <pango/pango.h>

#include <cstddef>
#include <string>

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
    /// Takes note of the files that have been added since.
    void addNewFiles();

private:
    GReference<PangoFontMap> map_;
    /// Files that have been added, of those that are known.
    std::size_t added_ = 0;
    GReference<PangoContext> context_;
};

/// Lets font maps made from now on know the file, and others with `addNewFiles`; answers its family, empty when it
/// holds no font. Any thread.
std::string addFontFile(const std::string& path);

}  // namespace flarebox::text
