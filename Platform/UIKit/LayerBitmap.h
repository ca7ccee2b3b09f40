#pragma once

#include <UIKit/Geometry.h>
#include <UIKit/UIView.h>

#include <cstdint>
#include <vector>

namespace flarebox::detail {

/// How large a bitmap a view's look takes, in pixels. A look without content repeats itself in the middle: such a
/// bitmap holds the edges and three equal lines of pixels between them, and is stretched to the view's size.
struct BitmapPlan {
    int width = 0, height = 0;
    /// By how much it reaches beyond the view, at its left and upper edge and at the others.
    int outsetX = 0, outsetY = 0, outsetRight = 0, outsetBottom = 0;
    /// How far the edges reach into the bitmap where it is stretched; 0 where it is not.
    int left = 0, right = 0, top = 0, bottom = 0;
    /// Pixels per point; less than the screen's for bitmaps that would be too large.
    CGFloat scale = 1;

    bool isStretchedX() const { return left > 0; }
    bool isStretchedY() const { return top > 0; }
};

/// Whether the view shows anything but a plain rectangle of its background colour.
bool needsBitmap(const UIView& view);
BitmapPlan planBitmap(const UIView& view, CGFloat scale, int maximumSize);
/// Shadow, background, content and border, into premultiplied pixels.
void drawBitmap(UIView& view, const BitmapPlan& plan, std::vector<std::uint32_t>& pixels);

/// Copies a picture without gaps and makes clear what lies beyond the rounded corners of `outline`, which is in the
/// picture's own pixels.
void copyRounded(const UIView::PixelBuffer& picture, const CGRect& outline, const CornerRadii& radii,
                 std::vector<std::uint32_t>& pixels);

std::uint32_t premultiplied(const UIColor& color);
/// From premultiplied pixels.
void makeAlphaStraight(std::vector<std::uint32_t>& pixels);

}  // namespace flarebox::detail
