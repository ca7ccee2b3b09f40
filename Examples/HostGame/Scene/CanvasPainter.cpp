#include "CanvasPainter.h"

#include <UIKit/Canvas.h>

#include <numbers>

namespace flarebox::hostgame {
namespace {

/// A canvas has no radial fill, so a glow is a pile of thin discs, each adding what the next larger one lacks.
constexpr int glowRings = 24;

struct CanvasPainter {
    Canvas& canvas;

    void operator()(const Gradient& gradient) const {
        canvas.fillGradient(gradient.rect, gradient.top, gradient.bottom, false);
    }

    void operator()(const Polygon& polygon) const {
        if (polygon.corners.empty()) return;
        follow(polygon.corners);
        canvas.closePath();
        canvas.fillPath(polygon.color);
    }

    void operator()(const Ridge& ridge) const {
        if (ridge.line.empty()) return;
        follow(ridge.line);
        canvas.lineTo({ridge.line.back().x, ridge.bottom});
        canvas.lineTo({ridge.line.front().x, ridge.bottom});
        canvas.closePath();
        canvas.fillPath(ridge.color);
    }

    void operator()(const Disc& disc) const { fillCircle(disc.center, disc.radius, disc.color); }

    void operator()(const Glow& glow) const {
        for (int ring = 1; ring <= glowRings; ++ring) {
            const double inner = (ring - 1.0) / glowRings, outer = static_cast<double>(ring) / glowRings;
            const UIColor step = glow.color.withAlpha(glow.at(inner).alpha - glow.at(outer).alpha);
            fillCircle(glow.center, glow.radius * outer, step);
        }
    }

    void follow(const std::vector<CGPoint>& points) const {
        canvas.moveTo(points.front());
        for (const CGPoint& point : points) canvas.lineTo(point);
    }

    void fillCircle(CGPoint center, CGFloat radius, const UIColor& color) const {
        canvas.arc(center, radius, 0, 2 * std::numbers::pi);
        canvas.fillPath(color);
    }
};

}  // namespace

void paint(const Scene& scene, Canvas& canvas) {
    for (const Shape& shape : scene.shapes) std::visit(CanvasPainter{canvas}, shape);
}

}  // namespace flarebox::hostgame
