#pragma once

#include <Foundation/Export.h>
#include <UIKit/Geometry.h>

#include <string>
#include <string_view>

namespace flarebox {

enum class UIFontWeight : int { Regular = 400, Medium = 500, Semibold = 600, Bold = 700 };

/// A typeface at a size in points. A plain value; a name that is not installed falls back to the system font.
class FLAREBOX_EXPORT UIFont {
public:
    UIFont() = default;
    /// `name` in the platform's form, family and weight joined by a hyphen: "HelveticaNeue-Medium".
    static UIFont fontWithName(std::string_view name, CGFloat size);
    /// The family's name as the font file has it; empty for the system font.
    static UIFont fontWithFamily(std::string_view family, CGFloat size, UIFontWeight weight = UIFontWeight::Regular);
    /// `size` in points, here and above.
    static UIFont systemFontOfSize(CGFloat size, UIFontWeight weight = UIFontWeight::Regular);

    /// Empty for the system font.
    const std::string& family() const { return family_; }
    UIFontWeight weight() const { return weight_; }  ///< what was asked for
    CGFloat pointSize() const { return size_; }      ///< 17 unless given
    UIFont fontWithSize(CGFloat size) const;         ///< the same in another size
    friend bool operator==(const UIFont&, const UIFont&) = default;

private:
    std::string family_;
    UIFontWeight weight_ = UIFontWeight::Regular;
    CGFloat size_ = 17;
};

}  // namespace flarebox
