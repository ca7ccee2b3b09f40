#pragma once

#include <UIKit/Geometry.h>

#include <utility>
#include <variant>
#include <vector>

namespace flarebox::hostgame {

/// A picture as a list of plain shapes, the first one farthest back. Lengths are points of the screen.
/// What draws it decides how: triangles of a renderer, or a canvas in memory.
struct Gradient {
    CGRect rect;
    UIColor top, bottom;
};
/// Convex, corners clockwise.
struct Polygon {
    std::vector<CGPoint> corners;
    UIColor color;
};
/// Everything between a line that runs from left to right and `bottom`.
struct Ridge {
    std::vector<CGPoint> line;
    CGFloat bottom = 0;
    UIColor color;
};
struct Disc {
    CGPoint center;
    CGFloat radius = 0;
    UIColor color;
};
/// Light that fades out towards the radius, ever more gently.
struct Glow {
    CGPoint center;
    CGFloat radius = 0;
    UIColor color;
    /// The colour at a distance from the centre, in radii.
    UIColor at(double distance) const {
        return color.withAlpha(color.alpha * static_cast<float>((1 - distance) * (1 - distance)));
    }
};

using Shape = std::variant<Gradient, Polygon, Ridge, Disc, Glow>;

struct Scene {
    CGSize size;
    std::vector<Shape> shapes;

    template <class S>
    void add(S shape) {
        shapes.emplace_back(std::move(shape));
    }
    void addBox(const CGRect& rect, const UIColor& color) { add(Gradient{rect, color, color}); }
    /// A straight stroke.
    void addLine(CGPoint from, CGPoint to, CGFloat width, const UIColor& color);
};

}  // namespace flarebox::hostgame
