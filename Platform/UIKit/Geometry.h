#pragma once

#include <algorithm>
#include <cstdint>

namespace flarebox {

/// All lengths are points unless a name says pixels; y grows downwards.
using CGFloat = double;

/// A place: to the right and down from the upper left corner of whatever it is a place of.
struct CGPoint {
    CGFloat x = 0;  ///< points to the right
    CGFloat y = 0;  ///< points downwards
    friend bool operator==(const CGPoint&, const CGPoint&) = default;
};
constexpr CGPoint operator+(CGPoint a, CGPoint b) {
    return {a.x + b.x, a.y + b.y};
}
constexpr CGPoint operator-(CGPoint a, CGPoint b) {
    return {a.x - b.x, a.y - b.y};
}

/// An extent; a negative one is as good as none.
struct CGSize {
    CGFloat width = 0;   ///< points
    CGFloat height = 0;  ///< points
    friend bool operator==(const CGSize&, const CGSize&) = default;
};

/// A rectangle, half open: its left and upper edges belong to it, the others do not.
struct CGRect {
    CGPoint origin;                                                        ///< the upper left corner
    CGSize size;                                                           ///< from there to the right and down
    constexpr CGFloat minX() const { return origin.x; }                    ///< the left edge
    constexpr CGFloat minY() const { return origin.y; }                    ///< the upper edge
    constexpr CGFloat maxX() const { return origin.x + size.width; }       ///< the right edge
    constexpr CGFloat maxY() const { return origin.y + size.height; }      ///< the lower edge
    constexpr CGFloat midX() const { return origin.x + size.width / 2; }   ///< of the middle
    constexpr CGFloat midY() const { return origin.y + size.height / 2; }  ///< of the middle
    constexpr CGFloat width() const { return size.width; }                 ///< of the size
    constexpr CGFloat height() const { return size.height; }               ///< of the size
    /// Whether a side is 0, negative or no number.
    constexpr bool isEmpty() const { return !(size.width > 0 && size.height > 0); }
    /// Points on the right and lower edge are outside.
    constexpr bool contains(CGPoint p) const { return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY(); }
    /// The same rectangle elsewhere: further right by dx, further down by dy.
    constexpr CGRect offset(CGFloat dx, CGFloat dy) const { return {{origin.x + dx, origin.y + dy}, size}; }
    /// Smaller by dx at the left and right, dy at the top and bottom.
    constexpr CGRect inset(CGFloat dx, CGFloat dy) const {
        return {{origin.x + dx, origin.y + dy}, {size.width - 2 * dx, size.height - 2 * dy}};
    }
    /// The common part; empty (zero-sized) when there is none.
    constexpr CGRect intersection(const CGRect& o) const {
        const CGFloat x0 = std::max(minX(), o.minX()), y0 = std::max(minY(), o.minY());
        const CGFloat x1 = std::min(maxX(), o.maxX()), y1 = std::min(maxY(), o.maxY());
        if (x1 <= x0 || y1 <= y0) return {{x0, y0}, {0, 0}};
        return {{x0, y0}, {x1 - x0, y1 - y0}};
    }
    friend bool operator==(const CGRect&, const CGRect&) = default;
};
constexpr CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    return {{x, y}, {width, height}};
}

/// How far inwards from each edge.
struct UIEdgeInsets {
    CGFloat top = 0;     ///< points; outwards where negative, as the others
    CGFloat left = 0;    ///< points
    CGFloat bottom = 0;  ///< points
    CGFloat right = 0;   ///< points
    friend bool operator==(const UIEdgeInsets&, const UIEdgeInsets&) = default;
};

/// A colour with opacity; components 0 to 1 in sRGB, not premultiplied.
struct UIColor {
    float red = 0;    ///< 0 to 1
    float green = 0;  ///< 0 to 1
    float blue = 0;   ///< 0 to 1
    float alpha = 0;  ///< 0, invisible, to 1, opaque

    /// Of 0xRRGGBB.
    static constexpr UIColor rgb(std::uint32_t hex, float alpha = 1) {
        return {static_cast<float>(hex >> 16 & 255) / 255, static_cast<float>(hex >> 8 & 255) / 255,
                static_cast<float>(hex & 255) / 255, alpha};
    }
    static constexpr UIColor clearColor() { return {}; }            ///< invisible
    static constexpr UIColor whiteColor() { return {1, 1, 1, 1}; }  ///< opaque
    static constexpr UIColor blackColor() { return {0, 0, 0, 1}; }  ///< opaque
    /// Two thirds of white, opaque.
    static constexpr UIColor lightGrayColor() { return {2.0F / 3, 2.0F / 3, 2.0F / 3, 1}; }
    /// The same colour with another opacity.
    constexpr UIColor withAlpha(float a) const { return {red, green, blue, a}; }
    /// Whether nothing of it can be seen.
    constexpr bool isClear() const { return alpha <= 0; }
    friend bool operator==(const UIColor&, const UIColor&) = default;
};

}  // namespace flarebox
