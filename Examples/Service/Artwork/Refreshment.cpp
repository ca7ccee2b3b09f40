#include "Products.h"

namespace flarebox::examples {
namespace {

constexpr Color aluminium = rgb(0xD5DAE2);
constexpr Color night = rgb(0x241B4B);
constexpr Color berry = rgb(0xFF4F93);
constexpr Color lime = rgb(0xC8F25A);

void drawBerry(Canvas& canvas, double x, double y, double radius, Color color) {
    canvas.circle(x, y, radius)
        .fill(Paint::ball(x, y, radius, x - radius * 0.35, y - radius * 0.4,
                          {{0, lighter(color, 0.45)}, {0.5, color}, {1, darker(color, 0.35)}}));
    canvas.ellipse(x - radius * 0.38, y - radius * 0.42, radius * 0.16, radius * 0.11).fill(white(0.75));
}

void drawLabel(Canvas& canvas) {
    canvas.box(-0.5, -1, 1, 2).fill(Paint::linear(0, -0.7, 0, 0.8, {{0, rgb(0x2F2466)}, {1, night}}));
    canvas.path("M -0.5 0.42 C -0.2 0.16 0.1 0.56 0.5 0.20 L 0.5 1 L -0.5 1 Z")
        .fill(Paint::linear(0, 0.2, 0, 0.8, {{0, berry}, {1, rgb(0xA52A86)}}));
    canvas.path("M -0.5 0.52 C -0.2 0.30 0.1 0.66 0.5 0.36 L 0.5 1 L -0.5 1 Z").fill(rgb(0x7B1F78, 0.65));
    drawBerry(canvas, -0.17, 0.44, 0.14, rgb(0x5A2CC0));
    drawBerry(canvas, 0.11, 0.50, 0.17, rgb(0x4524A8));
    drawBerry(canvas, -0.06, 0.64, 0.12, rgb(0x6D35D0));
    canvas.path("M 0.10 -0.56 L -0.20 -0.06 L -0.01 -0.06 L -0.10 0.30 L 0.21 -0.20 L 0.03 -0.20 Z")
        .fill(Paint::linear(0, -0.56, 0, 0.30, {{0, lighter(lime, 0.5)}, {0.5, lime}, {1, rgb(0x5FD98A)}}));
}

void drawDroplets(Canvas& canvas) {
    for (int index = 0; index < 26; ++index) {
        double x = -0.33 + (index * 37 % 64) * 0.0105;
        double y = -0.60 + (index * 23 % 61) * 0.0215;
        double radius = 0.007 + (index * 11 % 5) * 0.0032;
        canvas.ellipse(x + radius * 0.3, y + radius * 0.5, radius, radius * 1.2).fill(black(0.25));
        canvas.ellipse(x, y, radius, radius * 1.2).fill(white(0.30));
        canvas.circle(x - radius * 0.3, y - radius * 0.4, radius * 0.4).fill(white(0.9));
    }
}

constexpr auto bottleBody =
    "M -0.13 -0.66 C -0.13 -0.54 -0.27 -0.54 -0.27 -0.36 L -0.27 0.84 C -0.27 0.92 -0.22 0.95 0 0.95 "
    "C 0.22 0.95 0.27 0.92 0.27 0.84 L 0.27 -0.36 C 0.27 -0.54 0.13 -0.54 0.13 -0.66 Z";

void drawCard(Canvas& canvas, Color from, Color to) {
    canvas.box(-0.80, -0.50, 1.60, 1.0, 0.11).fill(Paint::linear(-0.8, -0.5, 0.8, 0.5, {{0, from}, {1, to}}));
    canvas.box(-0.79, -0.49, 1.58, 0.98, 0.10).stroke(white(0.22), 0.012);
}

}  // namespace

void drawCan(Canvas& canvas) {
    constexpr auto body =
        "M -0.40 -0.66 C -0.40 -0.78 -0.33 -0.77 -0.32 -0.88 L 0.32 -0.88 C 0.33 -0.77 0.40 -0.78 0.40 -0.66 "
        "L 0.40 0.74 C 0.40 0.84 0.34 0.84 0.33 0.90 C 0.20 0.97 -0.20 0.97 -0.33 0.90 "
        "C -0.34 0.84 -0.40 0.84 -0.40 0.74 Z";
    canvas.path(body).fill(aluminium);
    canvas.path("M -0.40 -0.66 C -0.20 -0.59 0.20 -0.59 0.40 -0.66 L 0.40 0.76 C 0.20 0.84 -0.20 0.84 -0.40 0.76 Z")
        .clipped([&] { drawLabel(canvas); });
    canvas.path(body).fill(Paint::roundness(-0.40, 0.40));
    canvas.ellipse(0, -0.88, 0.32, 0.06).fill(Paint::linear(-0.3, 0, 0.3, 0, {{0, white()}, {1, rgb(0x9AA2AF)}}));
    canvas.ellipse(0, -0.875, 0.28, 0.045)
        .fill(Paint::linear(-0.3, 0, 0.3, 0, {{0, rgb(0x8A92A0)}, {1, rgb(0xDDE1E8)}}));
    canvas.ellipse(0.02, -0.885, 0.10, 0.018).fill(rgb(0xEEF1F5));
    drawDroplets(canvas);
}

void drawBottle(Canvas& canvas) {
    canvas.path("M -0.10 -0.86 C -0.12 -1.08 0.12 -1.08 0.10 -0.86").stroke(rgb(0x2B3138), 0.05);
    canvas.box(-0.155, -0.89, 0.31, 0.25, 0.05).fillAnd(rgb(0x343B44)).fill(Paint::roundness(-0.155, 0.155));
    canvas.path(bottleBody).fillAnd(rgb(0xFFB23E)).clipped([&] {
        canvas.box(-0.3, 0.76, 0.6, 0.3).fill(rgb(0xC7CDD5));
        canvas.box(-0.3, 0.745, 0.6, 0.018).fill(rgb(0xD98A1E));
        canvas.path("M -0.15 0.22 L 0.0 -0.04 L 0.06 0.06 L 0.10 0.0 L 0.19 0.22 Z").fill(rgb(0xFFF4DC));
        canvas.circle(-0.10, -0.04, 0.035).fill(rgb(0xFFF4DC));
    });
    canvas.path(bottleBody).fill(Paint::roundness(-0.27, 0.27));
}

void drawGiftCard(Canvas& canvas) {
    canvas.turned(9, [&] { drawCard(canvas, rgb(0x3A2A7A), night); });
    canvas.turned(-8, [&] {
        drawCard(canvas, rgb(0xFF6FA5), rgb(0x9C2D9A));
        canvas.box(-0.80, -0.50, 1.60, 1.0, 0.11).clipped([&] {
            canvas.path("M -0.9 0.30 C -0.4 0.02 0.2 0.56 0.9 0.10 L 0.9 0.7 L -0.9 0.7 Z").fill(rgb(0x5A2CC0, 0.55));
            drawBerry(canvas, 0.56, 0.30, 0.17, rgb(0x5A2CC0));
            drawBerry(canvas, 0.36, 0.40, 0.13, rgb(0x4524A8));
            canvas.box(-0.50, -0.6, 0.13, 1.2)
                .fill(Paint::linear(-0.5, 0, -0.37, 0, {{0, lighter(lime, 0.35)}, {1, lime}}));
        });
        canvas.moved(-0.435, -0.16, [&] {
            canvas.mirrored([&] {
                canvas.path("M 0 0 C 0.10 -0.24 0.36 -0.26 0.34 -0.08 C 0.33 0.06 0.12 0.08 0 0 Z")
                    .fill(Paint::linear(0, -0.2, 0.3, 0.05, {{0, lighter(lime, 0.5)}, {1, darker(lime, 0.12)}}));
                canvas.path("M 0 0 C 0.12 0.08 0.16 0.20 0.24 0.30 L 0.10 0.28 Z").fill(darker(lime, 0.18));
            });
            canvas.circle(0, 0, 0.06).fill(darker(lime, 0.08));
        });
        canvas.path("M 0.16 -0.34 L -0.06 0.02 L 0.08 0.02 L 0.01 0.28 L 0.24 -0.08 L 0.11 -0.08 Z").fill(white(0.95));
    });
}

}  // namespace flarebox::examples
