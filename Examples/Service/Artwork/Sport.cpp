#include "Products.h"

namespace flarebox::examples {
namespace {

constexpr Color cream = rgb(0xF7F2E8);
constexpr Color coral = rgb(0xFF7A52);
constexpr Color amber = rgb(0xFFC45C);
constexpr Color night = rgb(0x1C2A3A);

void drawSole(Canvas& canvas) {
    canvas
        .path(
            "M -0.93 0.30 C -1.00 0.48 -0.95 0.62 -0.80 0.63 L 0.42 0.63 C 0.74 0.63 1.02 0.56 1.06 0.34 "
            "C 0.98 0.30 0.80 0.34 0.60 0.32 L -0.93 0.26 Z")
        .fill(Paint::linear(0, 0.26, 0, 0.63, {{0, white()}, {0.55, cream}, {1, darker(cream, 0.22)}}));
    canvas
        .path(
            "M -0.96 0.53 C -0.93 0.60 -0.88 0.63 -0.80 0.63 L 0.42 0.63 C 0.72 0.63 0.94 0.58 1.03 0.44 "
            "C 0.90 0.54 0.70 0.56 0.42 0.56 L -0.74 0.56 C -0.84 0.56 -0.91 0.55 -0.96 0.53 Z")
        .fill(night);
    canvas.path("M -0.90 0.42 C -0.55 0.35 -0.30 0.50 0.02 0.45 C 0.30 0.41 0.55 0.44 0.80 0.42")
        .stroke(withAlpha(coral, 0.9), 0.035);
}

constexpr auto upper =
    "M -0.92 0.34 C -0.97 0.10 -0.95 -0.18 -0.88 -0.44 C -0.86 -0.53 -0.76 -0.54 -0.72 -0.46 "
    "C -0.66 -0.33 -0.58 -0.26 -0.46 -0.27 C -0.34 -0.28 -0.26 -0.38 -0.20 -0.50 "
    "C -0.16 -0.58 -0.04 -0.58 0.02 -0.50 C 0.14 -0.30 0.30 -0.10 0.52 -0.01 "
    "C 0.72 0.06 0.97 0.02 1.03 0.24 C 1.05 0.30 1.05 0.34 1.03 0.36 C 0.90 0.40 0.70 0.38 0.50 0.38 L -0.92 0.36 Z";

void drawUpper(Canvas& canvas) {
    canvas
        .path(
            "M -0.84 -0.44 C -0.66 -0.22 -0.40 -0.16 -0.22 -0.46 L -0.16 -0.38 C -0.36 -0.08 -0.72 -0.08 -0.88 -0.34 Z")
        .fill(darker(night, 0.2));
    canvas.path(upper).fill(
        Paint::linear(-0.4, -0.5, 0.1, 0.4, {{0, lighter(coral, 0.16)}, {0.55, coral}, {1, darker(coral, 0.26)}}));
    canvas.path(upper).clipped([&] {
        // Knit, in rows that follow the foot.
        for (int row = 0; row < 9; ++row) {
            double y = -0.28 + row * 0.07;
            canvas.moved(0, y, [&] {
                canvas.path("M -0.40 0.10 C -0.10 0.16 0.20 0.10 0.46 0.16 C 0.70 0.22 0.90 0.24 1.10 0.30")
                    .stroke(white(0.10), 0.012);
            });
        }
        // Toe cap, heel counter and the wave along the side.
        canvas.path("M 0.66 -0.10 C 0.58 0.10 0.62 0.30 0.74 0.44 L 1.2 0.44 L 1.2 -0.1 Z")
            .fill(Paint::linear(0.62, 0, 1.0, 0.3, {{0, darker(coral, 0.06)}, {1, darker(coral, 0.34)}}));
        canvas.path("M -1.1 -0.12 C -0.78 -0.14 -0.62 0.10 -0.66 0.44 L -1.1 0.44 Z").fill(night);
        canvas.path("M -0.62 0.34 C -0.34 0.30 -0.06 0.10 0.12 -0.20 L 0.30 -0.08 C 0.16 0.16 0.00 0.32 -0.14 0.40 Z")
            .fill(Paint::linear(-0.5, 0.3, 0.2, -0.1, {{0, amber}, {1, lighter(amber, 0.55)}}));
    });
    // The opening: a padded collar and the lining that shows behind it.
    canvas.path("M -0.80 -0.48 C -0.70 -0.28 -0.56 -0.21 -0.44 -0.22 C -0.30 -0.24 -0.22 -0.36 -0.14 -0.52")
        .stroke(night, 0.07);
    canvas.path("M -0.79 -0.47 C -0.70 -0.29 -0.56 -0.22 -0.45 -0.235 C -0.32 -0.25 -0.25 -0.36 -0.17 -0.50")
        .stroke(white(0.18), 0.014);
}

void drawLaces(Canvas& canvas) {
    canvas.path("M -0.12 -0.54 C -0.04 -0.34 0.14 -0.10 0.40 0.04").stroke(darker(coral, 0.32), 0.10);
    for (int index = 0; index < 5; ++index) {
        double x = -0.08 + index * 0.095, y = -0.42 + index * 0.095 - index * index * 0.004;
        canvas.line(x - 0.075, y + 0.075, x + 0.075, y - 0.03).stroke(black(0.25), 0.05);
        canvas.line(x - 0.08, y + 0.065, x + 0.07, y - 0.04).stroke(white(), 0.042);
    }
}

void drawTruck(Canvas& canvas) {
    for (double side : {-1.0, 1.0}) {
        double x = side * 0.335;
        canvas.box(x - 0.085, -0.105, 0.17, 0.21, 0.055)
            .fillAnd(cream)
            .fill(Paint::linear(0, -0.105, 0, 0.105, {{0, white(0.7)}, {0.4, white(0)}, {1, black(0.4)}}));
    }
    canvas.box(-0.27, -0.038, 0.54, 0.076, 0.03)
        .fill(Paint::linear(0, -0.04, 0, 0.04, {{0, rgb(0xE8EBF0)}, {1, rgb(0x7C8594)}}));
    canvas.box(-0.12, -0.17, 0.24, 0.34, 0.05)
        .fill(Paint::linear(-0.1, -0.1, 0.1, 0.1, {{0, rgb(0xD9DDE5)}, {1, rgb(0x8A93A1)}}));
    canvas.circle(0, 0, 0.065).fill(rgb(0x59616E));
    canvas.circle(-0.01, -0.01, 0.04).fill(rgb(0xC9CED7));
    for (double x : {-0.085, 0.085}) {
        for (double y : {-0.135, 0.135}) canvas.circle(x, y, 0.016).fill(rgb(0x4A515C));
    }
}

}  // namespace

void drawRunningShoe(Canvas& canvas) {
    canvas.turned(-9, [&] {
        canvas.moved(-0.02, -0.02, [&] {
            drawSole(canvas);
            drawUpper(canvas);
            drawLaces(canvas);
        });
    });
}

void drawSkateboard(Canvas& canvas) {
    canvas.turned(38, [&] {
        canvas.box(-0.285, -1.0, 0.57, 2.0, 0.285).fill(rgb(0xC98B52));
        canvas.box(-0.265, -0.98, 0.53, 1.96, 0.265).clipped([&] {
            canvas.box(-0.3, -1, 0.6, 2).fill(Paint::linear(0, -1, 0, 1, {{0, rgb(0x1E7F86)}, {1, rgb(0x123F5C)}}));
            canvas.circle(0, 0.02, 0.23).fill(Paint::linear(0, -0.22, 0, 0.25, {{0, amber}, {1, coral}}));
            for (int wave = 0; wave < 5; ++wave) {
                double y = 0.10 + wave * 0.20;
                canvas.moved(0, y, [&] {
                    canvas
                        .path(
                            "M -0.4 0.06 C -0.25 -0.10 -0.10 -0.02 0 0.05 C 0.12 0.13 0.25 0.02 0.4 -0.06 L 0.4 1.2 L "
                            "-0.4 1.2 Z")
                        .fill(mix(rgb(0xF2E6CF), rgb(0x1B5F79), 0.12 + wave * 0.21));
                });
            }
            for (int star = 0; star < 9; ++star) {
                canvas.circle(-0.18 + (star * 7 % 9) * 0.045, -0.92 + star * 0.075, 0.008 + star % 3 * 0.005)
                    .fill(white(0.8));
            }
        });
        canvas.moved(0, -0.56, [&] { drawTruck(canvas); });
        canvas.moved(0, 0.56, [&] { drawTruck(canvas); });
    });
}

}  // namespace flarebox::examples
