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
        /// Null stands for the kit's own.
        const VectorIcon* icon = nullptr;
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
    /// Like all that is set here, to be set before the theme is handed over.
    void setPalette(const UIPalette& palette) { palette_ = palette; }
    /// On the open button. Its sign is never null.
    const Mark& openButtonMark() const { return openButtonMark_; }
    void setOpenButtonMark(const Mark& mark) { openButtonMark_ = withSign(mark); }  ///< takes it over
    /// In the top bar. Its sign is never null.
    const Mark& logo() const { return logo_; }
    void setLogo(const Mark& mark) { logo_ = withSign(mark); }  ///< takes it over
    /// Runs down the open button, which grows with it; absent for none.
    const NSString& openButtonText() const { return openButtonText_; }
    void setOpenButtonText(const NSString& text) { openButtonText_ = text; }  ///< absent for none
    /// In the top bar; absent for the kit's own.
    const NSString& titleText() const { return titleText_; }
    void setTitleText(const NSString& text) { titleText_ = text; }  ///< absent for the kit's own

private:
    static Mark withSign(const Mark& mark);

    UIPalette palette_;
    Mark openButtonMark_, logo_;
    NSString openButtonText_, titleText_;
};

}  // namespace flarebox
