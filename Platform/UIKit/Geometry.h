#pragma once

#include <algorithm>
#include <cstdint>

namespace flarebox {

/// All lengths are points unless a name says pixels; y grows downwards.
using CGFloat = double;

struct CGPoint {
    CGFloat x = 0, y = 0;
    friend bool operator==(const CGPoint&, const CGPoint&) = default;
};
constexpr CGPoint operator+(CGPoint a, CGPoint b) {
    return {a.x + b.x, a.y + b.y};
}
constexpr CGPoint operator-(CGPoint a, CGPoint b) {
    return {a.x - b.x, a.y - b.y};
}

struct CGSize {
    CGFloat width = 0, height = 0;
    friend bool operator==(const CGSize&, const CGSize&) = default;
};

struct CGRect {
    CGPoint origin;
    CGSize size;
    constexpr CGFloat minX() const { return origin.x; }
    constexpr CGFloat minY() const { return origin.y; }
    constexpr CGFloat maxX() const { return origin.x + size.width; }
    constexpr CGFloat maxY() const { return origin.y + size.height; }
    constexpr CGFloat midX() const { return origin.x + size.width / 2; }
    constexpr CGFloat midY() const { return origin.y + size.height / 2; }
    constexpr CGFloat width() const { return size.width; }
    constexpr CGFloat height() const { return size.height; }
    constexpr bool isEmpty() const { return !(size.width > 0 && size.height > 0); }
    constexpr bool contains(CGPoint p) const { return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY(); }
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

struct UIEdgeInsets {
    CGFloat top = 0, left = 0, bottom = 0, right = 0;
    friend bool operator==(const UIEdgeInsets&, const UIEdgeInsets&) = default;
};

/// A colour with opacity; components 0 to 1 in sRGB, not premultiplied.
struct UIColor {
    float red = 0, green = 0, blue = 0, alpha = 0;

    static constexpr UIColor rgb(std::uint32_t hex, float alpha = 1) {
        return {static_cast<float>(hex >> 16 & 255) / 255, static_cast<float>(hex >> 8 & 255) / 255,
                static_cast<float>(hex & 255) / 255, alpha};
    }
    static constexpr UIColor clearColor() { return {}; }
    static constexpr UIColor whiteColor() { return {1, 1, 1, 1}; }
    static constexpr UIColor blackColor() { return {0, 0, 0, 1}; }
    static constexpr UIColor lightGrayColor() { return {2.0F / 3, 2.0F / 3, 2.0F / 3, 1}; }
    constexpr UIColor withAlpha(float a) const { return {red, green, blue, a}; }
    constexpr bool isClear() const { return alpha <= 0; }
    friend bool operator==(const UIColor&, const UIColor&) = default;
};

}  // namespace flarebox
