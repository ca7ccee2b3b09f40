#include "Products.h"

#include <cmath>
#include <numbers>

namespace flarebox::examples {
namespace {

constexpr Color steel = rgb(0xD8DDE5);
constexpr Color leather = rgb(0xB5703C);
constexpr Color canvasCloth = rgb(0xE2A93B);
constexpr Color cream = rgb(0xF6F1E6);

void drawStrap(Canvas& canvas) {
    canvas.path("M -0.225 -1.16 L 0.225 -1.16 L 0.30 -0.42 L -0.30 -0.42 Z")
        .fill(
            Paint::linear(-0.3, 0, 0.3, 0, {{0, lighter(leather, 0.12)}, {0.5, leather}, {1, darker(leather, 0.35)}}));
    canvas.mirrored([&] {
        for (int stitch = 0; stitch < 9; ++stitch) {
            double y = -1.12 + stitch * 0.075, x = 0.185 + stitch * 0.0077;
            canvas.line(x, y, x + 0.004, y + 0.036).stroke(rgb(0xF2D9B8), 0.014);
        }
    });
}

// Brushed metal answers the light in two opposite fans.
void drawSunray(Canvas& canvas, double radius, Color color) {
    canvas.circle(0, 0, radius).fill(color);
    constexpr int rays = 180;
    for (int ray = 0; ray < rays; ++ray) {
        double angle = ray * 360.0 / rays;
        double shine = std::cos(2 * (angle - 225) * std::numbers::pi / 180);
        cairo_move_to(canvas.context(), 0, 0);
        cairo_arc(canvas.context(), 0, 0, radius, angle * std::numbers::pi / 180,
                  (angle + 2.6) * std::numbers::pi / 180);
        cairo_close_path(canvas.context());
        canvas.fill(shine > 0 ? white(0.30 * shine) : black(-0.30 * shine));
    }
}

void drawHand(Canvas& canvas, double degrees, double length, double width) {
    canvas.moved(0.012, 0.02,
                 [&] { canvas.turned(degrees, [&] { canvas.line(0, 0.06, 0, -length).stroke(black(0.35), width); }); });
    canvas.turned(degrees, [&] {
        canvas.line(0, 0.06, 0, -length).stroke(cream, width);
        canvas.line(0, -0.05, 0, -length).stroke(darker(steel, 0.25), width * 0.25);
    });
}

void drawDial(Canvas& canvas) {
    drawSunray(canvas, 0.475, rgb(0x1E3A5F));
    for (int minute = 0; minute < 60; ++minute) {
        canvas.turned(minute * 6, [&] {
            if (minute % 5 == 0) {
                canvas.box(-0.017, -0.435, 0.034, minute % 15 == 0 ? 0.105 : 0.075, 0.008).fill(cream);
            } else {
                canvas.line(0, -0.435, 0, -0.422).stroke(white(0.6), 0.008);
            }
        });
    }
    canvas.moved(0, 0.20, [&] {
        canvas.circle(0, 0, 0.105).fill(rgb(0x14283F));
        canvas.circle(0, 0, 0.105).stroke(withAlpha(steel, 0.7), 0.008);
        canvas.line(0, 0, 0.045, -0.065).stroke(rgb(0xFF8A5C), 0.012);
    });
    drawHand(canvas, -54, 0.24, 0.042);
    drawHand(canvas, 54, 0.36, 0.032);
    canvas.turned(200, [&] { canvas.line(0, 0.10, 0, -0.39).stroke(rgb(0xFF8A5C), 0.012); });
    canvas.circle(0, 0, 0.030).fill(rgb(0xFF8A5C));
    canvas.circle(0, 0, 0.012).fill(cream);
}

void drawLens(Canvas& canvas) {
    canvas.circle(0, 0, 0.38)
        .fill(Paint::linear(-0.1, -0.4, 0.1, 0.4, {{0, rgb(0x1F2A44)}, {0.5, rgb(0x7A3F5C)}, {1, rgb(0xFFAE63)}}));
    canvas.circle(0, 0, 0.38).clipped([&] {
        canvas.path("M -0.46 0.10 L -0.02 -0.46 L 0.14 -0.46 L -0.42 0.30 Z").fill(white(0.26));
        canvas.path("M -0.28 0.36 L 0.32 -0.40 L 0.37 -0.36 L -0.22 0.42 Z").fill(white(0.16));
    });
    canvas.circle(0, 0, 0.405)
        .stroke(Paint::linear(-0.4, -0.4, 0.4, 0.4, {{0, white()}, {0.4, cream}, {1, rgb(0xC7BBA4)}}), 0.085);
    canvas.arc(0, 0, 0.425, 195, 265).stroke(white(0.9), 0.014);
}

void drawBuckledStrap(Canvas& canvas) {
    canvas.box(0.16, -0.30, 0.13, 0.62, 0.03)
        .fill(Paint::linear(0.16, 0, 0.29, 0, {{0, lighter(leather, 0.1)}, {1, darker(leather, 0.25)}}));
    canvas.box(0.135, 0.05, 0.18, 0.13, 0.03).fill(rgb(0x8F959F));
    canvas.box(0.135, 0.045, 0.18, 0.12, 0.03).stroke(rgb(0xEEF0F3), 0.022);
    canvas.box(0.175, 0.075, 0.10, 0.06, 0.01).fill(leather);
    canvas.circle(0.225, 0.26, 0.013).fill(darker(leather, 0.5));
}

}  // namespace

void drawWatch(Canvas& canvas) {
    drawStrap(canvas);
    canvas.scaled(1, -1, [&] { drawStrap(canvas); });
    canvas.box(0.54, -0.075, 0.13, 0.15, 0.03)
        .fill(Paint::linear(0, -0.08, 0, 0.08, {{0, white()}, {1, rgb(0x767E8A)}}));
    for (double x : {-0.345, 0.245}) {
        canvas.box(x, -0.62, 0.10, 1.24, 0.05)
            .fill(Paint::linear(x, 0, x + 0.1, 0, {{0, white()}, {0.6, rgb(0xB4BBC6)}, {1, rgb(0x7C8491)}}));
    }
    canvas.circle(0, 0, 0.59)
        .fill(Paint::linear(-0.4, -0.45, 0.4, 0.45, {{0, white()}, {0.45, rgb(0xB9C0CA)}, {1, rgb(0x5E6672)}}));
    canvas.circle(0, 0, 0.535)
        .fill(Paint::linear(-0.4, -0.45, 0.4, 0.45, {{0, rgb(0x717A87)}, {0.5, rgb(0xC3C9D2)}, {1, white()}}));
    canvas.circle(0, 0, 0.495).fill(rgb(0x0F1C2E));
    drawDial(canvas);
    canvas.circle(0, 0, 0.475).clipped([&] {
        canvas.path("M -0.5 -0.1 L 0.05 -0.6 L 0.32 -0.6 L -0.5 0.28 Z").fill(white(0.10));
    });
}

void drawSunglasses(Canvas& canvas) {
    canvas.turned(-8, [&] {
        canvas.mirrored([&] {
            canvas.path("M 0.88 -0.16 C 0.98 -0.30 0.94 -0.50 0.80 -0.66").stroke(rgb(0xB8AB93), 0.06);
            canvas.path("M 0.86 -0.18 L 0.93 -0.22").stroke(cream, 0.10);
        });
        canvas.path("M -0.12 -0.10 C -0.06 -0.22 0.06 -0.22 0.12 -0.10").stroke(rgb(0xA89B84), 0.085);
        canvas.path("M -0.12 -0.11 C -0.06 -0.23 0.06 -0.23 0.12 -0.11").stroke(cream, 0.065);
        for (double x : {-0.475, 0.475}) canvas.moved(x, 0.05, [&] { drawLens(canvas); });
    });
}

void drawBackpack(Canvas& canvas) {
    constexpr Color shade = darker(canvasCloth, 0.30);
    canvas.mirrored([&] {
        canvas.path("M 0.42 -0.50 C 0.80 -0.40 0.84 0.30 0.62 0.66").stroke(darker(leather, 0.35), 0.10);
        canvas.path("M 0.50 0.24 C 0.74 0.24 0.74 0.78 0.52 0.80 Z").fill(darker(canvasCloth, 0.38));
    });
    canvas.path("M -0.17 -0.82 C -0.17 -1.06 0.17 -1.06 0.17 -0.82").stroke(darker(leather, 0.2), 0.065);
    constexpr auto body =
        "M -0.50 -0.48 C -0.48 -0.80 -0.28 -0.88 0 -0.88 C 0.28 -0.88 0.48 -0.80 0.50 -0.48 "
        "L 0.57 0.60 C 0.58 0.80 0.46 0.87 0.30 0.87 L -0.30 0.87 C -0.46 0.87 -0.58 0.80 -0.57 0.60 Z";
    canvas.path(body).fillAnd(canvasCloth).clipped([&] {
        canvas.box(-0.7, 0.74, 1.4, 0.3).fill(leather);
        canvas.line(-0.6, 0.745, 0.6, 0.745).stroke(darker(leather, 0.4), 0.012);
    });
    canvas.path(body).fill(
        Paint::linear(-0.57, 0, 0.57, 0, {{0, black(0.22)}, {0.16, white(0.16)}, {0.5, white(0)}, {1, black(0.38)}}));

    canvas.box(-0.38, 0.20, 0.76, 0.49, 0.10).fill(black(0.20));
    canvas.box(-0.38, 0.18, 0.76, 0.49, 0.10)
        .fill(Paint::linear(-0.3, 0.2, 0.3, 0.7, {{0, lighter(canvasCloth, 0.12)}, {1, darker(canvasCloth, 0.2)}}));
    canvas.line(-0.30, 0.40, 0.30, 0.40).stroke(shade, 0.022);
    canvas.line(0.22, 0.40, 0.22, 0.50).stroke(darker(leather, 0.2), 0.03);

    constexpr auto flap =
        "M -0.51 -0.40 C -0.50 -0.82 -0.28 -0.89 0 -0.89 C 0.28 -0.89 0.50 -0.82 0.51 -0.40 "
        "C 0.52 -0.16 0.42 -0.06 0.28 -0.04 L -0.28 -0.04 C -0.42 -0.06 -0.52 -0.16 -0.51 -0.40 Z";
    canvas.moved(0, 0.035, [&] { canvas.path(flap).fill(black(0.22)); });
    canvas.path(flap).fill(Paint::linear(
        -0.4, -0.9, 0.4, 0, {{0, lighter(canvasCloth, 0.28)}, {0.5, canvasCloth}, {1, darker(canvasCloth, 0.22)}}));
    canvas.mirrored([&] { drawBuckledStrap(canvas); });
    canvas.box(-0.10, -0.50, 0.20, 0.17, 0.03).fill(cream);
    canvas.path("M -0.065 -0.37 L 0 -0.465 L 0.025 -0.425 L 0.04 -0.445 L 0.07 -0.37 Z").fill(rgb(0x4F7A5A));
}

}  // namespace flarebox::examples
