#include "CanvasPainter.h"

#include <UIKit/Canvas.h>
#include <UIKit/UIImage.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace flarebox::hostgame {
namespace {

/// Pixels along the side of the picture that a glow is stretched from.
constexpr int glowSide = 160;

/// A canvas has no radial fill.
Ref<UIImage> pictureOf(const Glow& glow) {
    std::vector<std::uint32_t> pixels;
    pixels.reserve(std::size_t{glowSide} * glowSide);
    for (int i = 0; i < glowSide * glowSide; ++i) {
        const int column = i % glowSide, row = i / glowSide;
        const double x = (column + 0.5) / glowSide * 2 - 1, y = (row + 0.5) / glowSide * 2 - 1;
        const float alpha = glow.at(std::min(std::hypot(x, y), 1.0)).alpha;
        const auto channel = [alpha](float value) {
            return static_cast<std::uint32_t>(std::lround(value * alpha * 255));
        };
        pixels.push_back(channel(1) << 24 | channel(glow.color.red) << 16 | channel(glow.color.green) << 8 |
                         channel(glow.color.blue));
    }
    return UIImage::imageWithPixels(glowSide, glowSide, std::move(pixels));
}

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
        const CGPoint corner = glow.center - CGPoint{glow.radius, glow.radius};
        canvas.drawImage(*pictureOf(glow), {corner, {2 * glow.radius, 2 * glow.radius}});
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
