#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>
#include <UIKit/UIImage.h>
#include <UIKit/UIPalette.h>

#include <string>
#include <string_view>
#include <vector>

namespace flarebox {

class VectorIcon;

/// Domain of the errors of theme files; their descriptions name file and line.
inline constexpr const char* ThemeErrorDomain = "ThemeErrorDomain";

/// How a brand wants the kit to look: colours, corner radii, typefaces, and what stands on the open button and in the
/// top bar. Handed over with FlareboxConfig::setTheme. Docs/theming.md describes the file. Main thread.
class FLAREBOX_EXPORT Theme : public NSObject {
    FLAREBOX_CLASS(Theme)
public:
    /// A mark of the brand: a picture of any shape in its own colours, or one of the kit's signs in the theme's.
    struct Mark {
        /// Never null.
        const VectorIcon* icon;
        /// Counts before the sign; may be null.
        Ref<UIImage> picture;
    };

    /// The kit's own look.
    Theme();

    /// The theme of an XML file of at most 64 KiB; fonts and pictures that it names are looked for from its folder.
    /// What cannot be used of it is left out, and a warning in the log names file, line and the fix, as it does for
    /// colours that are too much alike (`contrastProblems`). Null when the file cannot be read at all, with the reason
    /// in `error`, or in the log when that is null. Fonts stay known to the process.
    static Ref<Theme> themeWithFile(const std::string& path, Ref<NSError>* error = nullptr);

    /// What cannot be seen well, as texts: `"ring" on "panel" has a contrast of 1.0 to 1, less than 3.0; …`. Texts need
    /// 4.5 to 1, signs and lines 3 to 1. Empty for a theme that everybody can read, as a game's own tests may expect.
    std::vector<std::string> contrastProblems() const;

    /// Makes a font file (TrueType or OpenType) known to the process for as long as it lives, and answers the family's
    /// name, for `UIPalette::setFamily`; empty when the file cannot be read or holds no font. Takes milliseconds.
    static std::string addFontFile(const std::string& path);

    /// Colours, corner radii and typefaces.
    const UIPalette& palette() const { return palette_; }
    /// Takes effect, as all that follows, when the theme is handed over.
    void setPalette(const UIPalette& palette) { palette_ = palette; }
    /// On the open button.
    const Mark& openButtonMark() const { return openButtonMark_; }
    /// The icon must not be null.
    void setOpenButtonMark(const Mark& mark) { openButtonMark_ = mark; }
    /// In the top bar.
    const Mark& logo() const { return logo_; }
    /// The icon must not be null.
    void setLogo(const Mark& mark) { logo_ = mark; }
    /// Runs down the open button, which grows with it; absent for none.
    const NSString& openButtonText() const { return openButtonText_; }
    /// Absent for none.
    void setOpenButtonText(const NSString& text) { openButtonText_ = text; }
    /// In the top bar; absent for the kit's own.
    const NSString& titleText() const { return titleText_; }
    /// Absent for the kit's own.
    void setTitleText(const NSString& text) { titleText_ = text; }

private:
    UIPalette palette_;
    Mark openButtonMark_, logo_;
    NSString openButtonText_, titleText_;
};

}  // namespace flarebox
