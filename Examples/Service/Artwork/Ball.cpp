#include "Products.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace flarebox::examples {
namespace {

struct Vector {
    double x, y, z;
};

Vector operator+(Vector a, Vector b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

Vector operator*(Vector a, double factor) {
    return {a.x * factor, a.y * factor, a.z * factor};
}

double dot(Vector a, Vector b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vector unit(Vector a) {
    return a * (1 / std::sqrt(dot(a, a)));
}

// Turns the ball so that one panel looks at the viewer, a little off the middle.
Vector turned(Vector a) {
    constexpr double pitch = 0.42, yaw = 0.36;
    Vector b{a.x * std::cos(yaw) + a.z * std::sin(yaw), a.y, a.z * std::cos(yaw) - a.x * std::sin(yaw)};
    return {b.x, b.y * std::cos(pitch) - b.z * std::sin(pitch), b.z * std::cos(pitch) + b.y * std::sin(pitch)};
}

std::array<Vector, 12> icosahedron() {
    constexpr double golden = std::numbers::phi;
    std::array<Vector, 12> corners;
    std::size_t index = 0;
    for (double a : {-1.0, 1.0}) {
        for (double b : {-golden, golden}) {
            corners[index++] = unit({0, a, b});
            corners[index++] = unit({a, b, 0});
            corners[index++] = unit({b, 0, a});
        }
    }
    for (Vector& corner : corners) corner = turned(corner);
    return corners;
}

constexpr double ballRadius = 0.82;
// The cosine between neighbouring corners of an icosahedron.
constexpr double neighbourCosine = 0.4472135955;

bool areNeighbours(Vector a, Vector b) {
    return std::abs(dot(a, b) - neighbourCosine) < 1e-6;
}

// Follows the great circle, as a seam does.
void seam(Canvas& canvas, Vector from, Vector to) {
    constexpr int steps = 8;
    for (int step = 0; step <= steps; ++step) {
        Vector point = unit(from * (1 - step / double{steps}) + to * (step / double{steps})) * ballRadius;
        cairo_line_to(canvas.context(), point.x, point.y);
    }
}

void drawPanel(Canvas& canvas, Vector center, const std::array<Vector, 12>& corners) {
    Vector right = unit({center.z, 0, -center.x});
    Vector down{center.y * right.z - center.z * right.y, center.z * right.x - center.x * right.z,
                center.x * right.y - center.y * right.x};
    auto angle = [&](Vector a) { return std::atan2(dot(a, down), dot(a, right)); };

    std::vector<Vector> outline;
    for (Vector corner : corners) {
        if (areNeighbours(center, corner)) outline.push_back(unit(center * 2 + corner));
    }
    std::sort(outline.begin(), outline.end(), [&](Vector a, Vector b) { return angle(a) < angle(b); });
    for (std::size_t index = 0; index < outline.size(); ++index) {
        seam(canvas, outline[index], outline[(index + 1) % outline.size()]);
    }
    cairo_close_path(canvas.context());
    canvas.fillAnd(rgb(0x22314A)).stroke(rgb(0x22314A), 0.02);
}

}  // namespace

void drawBall(Canvas& canvas) {
    canvas.circle(0, 0, ballRadius).fill(rgb(0xFAF8F2));
    auto corners = icosahedron();
    canvas.circle(0, 0, ballRadius).clipped([&] {
        for (Vector a : corners) {
            for (Vector b : corners) {
                if (!areNeighbours(a, b) || (a + b).z < -0.2) continue;
                seam(canvas, unit(a * 2 + b), unit(b * 2 + a));
                canvas.stroke(rgb(0xB9BDC4), 0.018);
            }
        }
        for (Vector corner : corners) {
            if (corner.z > -0.25) drawPanel(canvas, corner, corners);
        }
    });
    canvas.circle(0, 0, ballRadius)
        .fill(Paint::ball(0, 0, ballRadius, -0.30, -0.34,
                          {{0, white(0.28)},
                           {0.35, white(0)},
                           {0.6, rgb(0x1A2434, 0.10)},
                           {0.88, rgb(0x1A2434, 0.42)},
                           {1, rgb(0x1A2434, 0.60)}}));
}

}  // namespace flarebox::examples
