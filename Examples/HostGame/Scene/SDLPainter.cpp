#include "SDLPainter.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace flarebox::hostgame {
namespace {

/// Between two rings the light changes evenly.
constexpr int glowRings = 5;

SDL_Color sdlColor(const UIColor& color) {
    const auto channel = [](float value) {
        return static_cast<Uint8>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255));
    };
    return {channel(color.red), channel(color.green), channel(color.blue), channel(color.alpha)};
}

/// Collects the triangles of a whole picture, in pixels, so that one call draws them.
class TriangleList {
public:
    explicit TriangleList(CGFloat pixelsPerPoint) : scale_(pixelsPerPoint) {}

    void operator()(const Gradient& gradient) {
        const CGRect& rect = gradient.rect;
        const SDL_Color top = sdlColor(gradient.top), bottom = sdlColor(gradient.bottom);
        addQuad(vertex({rect.minX(), rect.minY()}, top), vertex({rect.maxX(), rect.minY()}, top),
                vertex({rect.maxX(), rect.maxY()}, bottom), vertex({rect.minX(), rect.maxY()}, bottom));
    }

    void operator()(const Polygon& polygon) { addConvex(polygon.corners, polygon.color); }

    void operator()(const Ridge& ridge) {
        const SDL_Color color = sdlColor(ridge.color), clear = sdlColor(ridge.color.withAlpha(0));
        const CGPoint feather{0, -1 / scale_};
        for (std::size_t i = 0; i + 1 < ridge.line.size(); ++i) {
            const CGPoint left = ridge.line[i], right = ridge.line[i + 1];
            addQuad(vertex(left, color), vertex(right, color), vertex({right.x, ridge.bottom}, color),
                    vertex({left.x, ridge.bottom}, color));
            addQuad(vertex(left + feather, clear), vertex(right + feather, clear), vertex(right, color),
                    vertex(left, color));
        }
    }

    void operator()(const Disc& disc) {
        std::vector<CGPoint> corners;
        const int count = cornersOfCircle(disc.radius);
        corners.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) corners.push_back(onCircle(disc.center, disc.radius, i, count));
        addConvex(corners, disc.color);
    }

    void operator()(const Glow& glow) {
        const int count = cornersOfCircle(glow.radius);
        for (int ring = 0; ring < glowRings; ++ring) {
            const double inner = static_cast<double>(ring) / glowRings, outer = (ring + 1.0) / glowRings;
            const SDL_Color innerColor = sdlColor(glow.at(inner)), outerColor = sdlColor(glow.at(outer));
            const auto place = [&](double distance, int i) {
                return onCircle(glow.center, glow.radius * distance, i, count);
            };
            for (int i = 0; i < count; ++i) {
                addQuad(vertex(place(inner, i), innerColor), vertex(place(outer, i), outerColor),
                        vertex(place(outer, i + 1), outerColor), vertex(place(inner, i + 1), innerColor));
            }
        }
    }

    const std::vector<SDL_Vertex>& vertices() const { return vertices_; }

private:
    SDL_Vertex vertex(CGPoint point, SDL_Color color) const {
        return {{static_cast<float>(point.x * scale_), static_cast<float>(point.y * scale_)}, color, {0, 0}};
    }
    int cornersOfCircle(CGFloat radius) const { return std::clamp(static_cast<int>(radius * scale_), 12, 64); }
    static CGPoint onCircle(CGPoint center, CGFloat radius, int index, int count) {
        const double angle = 2 * std::numbers::pi * index / count;
        return {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
    }

    void add(const SDL_Vertex& a, const SDL_Vertex& b, const SDL_Vertex& c) {
        vertices_.insert(vertices_.end(), {a, b, c});
    }
    void addQuad(const SDL_Vertex& a, const SDL_Vertex& b, const SDL_Vertex& c, const SDL_Vertex& d) {
        add(a, b, c);
        add(a, c, d);
    }

    /// The inside, and around it a rim one pixel wide that fades out.
    void addConvex(const std::vector<CGPoint>& corners, const UIColor& color) {
        if (corners.size() < 3) return;
        const SDL_Color full = sdlColor(color), clear = sdlColor(color.withAlpha(0));
        const std::vector<CGPoint> rim = grown(corners, 1 / scale_);
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const std::size_t next = (i + 1) % corners.size();
            if (i >= 1 && next != 0)
                add(vertex(corners[0], full), vertex(corners[i], full), vertex(corners[next], full));
            addQuad(vertex(rim[i], clear), vertex(rim[next], clear), vertex(corners[next], full),
                    vertex(corners[i], full));
        }
    }

    static std::vector<CGPoint> grown(const std::vector<CGPoint>& corners, CGFloat distance) {
        CGPoint middle;
        for (const CGPoint& corner : corners) middle = middle + corner;
        middle = {middle.x / static_cast<CGFloat>(corners.size()), middle.y / static_cast<CGFloat>(corners.size())};
        std::vector<CGPoint> result = corners;
        for (CGPoint& corner : result) {
            const CGPoint away = corner - middle;
            const CGFloat length = std::max(std::hypot(away.x, away.y), 1e-6);
            corner = corner + CGPoint{away.x / length * distance, away.y / length * distance};
        }
        return result;
    }

    CGFloat scale_;
    std::vector<SDL_Vertex> vertices_;
};

}  // namespace

void paint(const Scene& scene, SDL_Renderer& renderer) {
    int width = 0, height = 0;
    SDL_GetRendererOutputSize(&renderer, &width, &height);
    TriangleList triangles(width / std::max(scene.size.width, 1.0));
    for (const Shape& shape : scene.shapes) std::visit(triangles, shape);
    SDL_SetRenderDrawBlendMode(&renderer, SDL_BLENDMODE_BLEND);
    SDL_SetRenderDrawColor(&renderer, 0, 0, 0, 255);
    SDL_RenderClear(&renderer);
    const auto& vertices = triangles.vertices();
    SDL_RenderGeometry(&renderer, nullptr, vertices.data(), static_cast<int>(vertices.size()), nullptr, 0);
}

}  // namespace flarebox::hostgame
