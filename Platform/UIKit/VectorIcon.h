#pragma once

#include <Foundation/Export.h>
#include <UIKit/Canvas.h>

#include <span>
#include <string_view>

namespace flarebox {

/// A sign drawn from lines at whatever size is asked for, so that it is sharp at every scale. All signs share one grid
/// of 24 x 24 units and one line width. The instances live as long as the process.
class FLAREBOX_EXPORT VectorIcon {
public:
    /// Side of the grid that signs are drawn on, and the width of their lines on it; signs larger than 36 points have
    /// finer ones.
    static constexpr CGFloat gridSide = 24;
    static constexpr CGFloat lineWidth = 1.75;  ///< in units of the grid

    /// The sign of that name, or null.
    static const VectorIcon* named(std::string_view name);
    static std::span<const VectorIcon> all();  ///< in no order

    std::string_view name() const { return name_; }  ///< as in layout files and themes
    /// Draws the sign into the largest square in the middle of the rectangle.
    void draw(Canvas& canvas, const CGRect& rect, const UIColor& color) const;

    /// Draws on the grid, with lines that wide.
    using Painter = void (*)(Canvas& canvas, const UIColor& color, CGFloat width);
    /// For the list of signs.
    constexpr VectorIcon(std::string_view name, Painter painter) : name_(name), painter_(painter) {}

private:
    std::string_view name_;
    Painter painter_;
};

}  // namespace flarebox
