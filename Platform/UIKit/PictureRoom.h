#pragma once

#include <UIKit/Geometry.h>
#include <UIKit/UIViewContentMode.h>

#include <cstddef>
#include <limits>

namespace flarebox {

struct PixelSize {
    int width = 0, height = 0;
    std::size_t count() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
    bool holds(const PixelSize& other) const { return width >= other.width && height >= other.height; }
    friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// The pixels in which a picture is shown, and how it lies in them. Without bound unless set.
struct PictureRoom {
    CGSize pixels{std::numeric_limits<CGFloat>::infinity(), std::numeric_limits<CGFloat>::infinity()};
    UIViewContentMode mode = UIViewContentMode::ScaleAspectFit;
    /// No side of a picture gets more pixels, not even where it reaches beyond the room.
    CGFloat longestSide = std::numeric_limits<CGFloat>::infinity();

    /// How many pixels a picture of that size takes there: at least 1 each way, and no more than it has.
    PixelSize sizeOf(PixelSize picture) const;
};

}  // namespace flarebox
