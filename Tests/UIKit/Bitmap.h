#pragma once

#include <UIKit/BitmapCanvas.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

namespace flarebox::testing {

/// Pixels to draw on and to look at.
struct Bitmap {
    Bitmap(int w, int h) : width(w), height(h), pixels(static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}

    std::unique_ptr<Canvas> canvas(CGFloat scale = 1) {
        return makeBitmapCanvas(pixels.data(), width, height, width, scale);
    }
    std::uint32_t at(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
    int alpha(int x, int y) const { return static_cast<int>(at(x, y) >> 24); }

    struct Box {
        int left = 1 << 20, top = 1 << 20, right = -1, bottom = -1;
        bool isEmpty() const { return right < left; }
        int width() const { return isEmpty() ? 0 : right - left + 1; }
        int height() const { return isEmpty() ? 0 : bottom - top + 1; }
    };
    /// The smallest box, ends included, around everything drawn in the columns from `firstColumn` on.
    Box ink(int firstColumn = 0) const {
        Box box;
        for (int y = 0; y < height; ++y) {
            for (int x = firstColumn; x < width; ++x) {
                if (at(x, y) == 0) continue;
                box.left = std::min(box.left, x);
                box.right = std::max(box.right, x);
                box.top = std::min(box.top, y);
                box.bottom = std::max(box.bottom, y);
            }
        }
        return box;
    }
    /// Whether all that is drawn lies within the rectangle, in points of a canvas of that scale.
    bool isWithin(const CGRect& rect, CGFloat scale = 1) const {
        const Box box = ink();
        return box.isEmpty() ||
               (box.left >= std::floor(rect.minX() * scale) && box.top >= std::floor(rect.minY() * scale) &&
                box.right < std::ceil(rect.maxX() * scale) && box.bottom < std::ceil(rect.maxY() * scale));
    }

    int width, height;
    std::vector<std::uint32_t> pixels;
};

}  // namespace flarebox::testing
