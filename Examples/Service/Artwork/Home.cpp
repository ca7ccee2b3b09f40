#include "Products.h"

namespace flarebox::examples {
namespace {

constexpr Color stoneware = rgb(0xF3E9DA);
constexpr Color glaze = rgb(0x2C6A78);
constexpr Color brass = rgb(0xD9B26A);
constexpr Color warm = rgb(0xFFD79A);

constexpr auto mugBody =
    "M -0.56 -0.46 C -0.56 0.10 -0.55 0.40 -0.46 0.60 C -0.42 0.71 -0.20 0.74 -0.06 0.74 "
    "C 0.08 0.74 0.30 0.71 0.34 0.60 C 0.43 0.40 0.44 0.10 0.44 -0.46 Z";

void drawLampShade(Canvas& canvas) {
    canvas.box(-0.05, -0.33, 0.10, 0.12, 0.03).fill(darker(brass, 0.2));
    canvas.path("M -0.44 0.20 C -0.42 -0.12 -0.22 -0.26 0 -0.26 C 0.22 -0.26 0.42 -0.12 0.44 0.20 Z")
        .fillAnd(rgb(0xFF7F5E))
        .fill(Paint::roundness(-0.44, 0.44));
    canvas.ellipse(0, 0.20, 0.44, 0.105).fill(rgb(0xC4553A));
    canvas.ellipse(0, 0.205, 0.41, 0.088)
        .fill(Paint::radial(0, 0.2, 0.42, {{0, white()}, {0.35, rgb(0xFFF1CF)}, {1, rgb(0xFFC773)}}));
}

// Where the shade hangs and how far it is turned.
void inShade(Canvas& canvas, const Canvas::Drawing& drawing) {
    canvas.moved(0.30, -0.50, [&] { canvas.turned(14, drawing); });
}

}  // namespace

void drawMug(Canvas& canvas) {
    constexpr auto handle = "M 0.40 -0.22 C 0.92 -0.36 0.98 0.40 0.38 0.38";
    canvas.path(handle).stroke(darker(stoneware, 0.34), 0.15);
    canvas.path(handle).stroke(Paint::linear(0.4, -0.3, 0.8, 0.45, {{0, stoneware}, {1, darker(stoneware, 0.25)}}),
                               0.12);
    canvas.path("M 0.46 -0.24 C 0.70 -0.29 0.80 -0.08 0.78 0.06").stroke(white(0.5), 0.025);

    canvas.path(mugBody).fillAnd(stoneware).clipped([&] {
        for (int index = 0; index < 60; ++index) {
            double x = -0.55 + (index * 41 % 97) * 0.0103;
            double y = -0.10 + (index * 29 % 83) * 0.0101;
            canvas.circle(x, y, 0.004 + index % 3 * 0.003).fill(rgb(0x8A6A4C, 0.55));
        }
        canvas
            .path(
                "M -0.7 -0.7 L 0.6 -0.7 L 0.6 0.06 C 0.44 0.02 0.40 0.22 0.30 0.22 C 0.20 0.22 0.18 0.04 0.06 0.05 "
                "C -0.06 0.06 -0.06 0.34 -0.16 0.34 C -0.26 0.34 -0.22 0.08 -0.34 0.08 C -0.44 0.08 -0.44 0.18 -0.52 "
                "0.17 "
                "C -0.58 0.16 -0.60 0.08 -0.7 0.10 Z")
            .fill(
                Paint::linear(0, -0.5, 0, 0.34, {{0, lighter(glaze, 0.10)}, {0.7, glaze}, {1, lighter(glaze, 0.22)}}));
    });
    canvas.path(mugBody).fill(Paint::roundness(-0.56, 0.44));

    canvas.ellipse(-0.06, -0.46, 0.50, 0.115)
        .fill(Paint::linear(-0.56, 0, 0.44, 0, {{0, lighter(glaze, 0.45)}, {1, darker(glaze, 0.1)}}));
    canvas.ellipse(-0.06, -0.455, 0.46, 0.095).fill(darker(glaze, 0.35));
    canvas.ellipse(-0.06, -0.43, 0.43, 0.07)
        .fill(Paint::radial(-0.16, -0.44, 0.5, {{0, rgb(0xA8693C)}, {1, rgb(0x4A2816)}}));
    canvas.ellipse(-0.18, -0.44, 0.14, 0.018).fill(rgb(0xE0B184, 0.5));
}

void drawSteam(Canvas& canvas) {
    for (double x : {-0.24, -0.02, 0.18}) {
        canvas.moved(x, x * 0.2, [&] {
            for (double width : {0.11, 0.075, 0.04}) {
                canvas.path("M 0 -0.50 C -0.14 -0.64 0.12 -0.72 0 -0.86 C -0.06 -0.94 -0.02 -0.99 0.03 -1.04")
                    .stroke(Paint::linear(0, -1.06, 0, -0.46, {{0, white(0)}, {0.5, white(0.14)}, {1, white(0)}}),
                            width);
            }
        });
    }
}

void drawLamp(Canvas& canvas) {
    canvas.ellipse(-0.22, 0.86, 0.40, 0.10).fill(darker(brass, 0.5));
    canvas.ellipse(-0.22, 0.82, 0.40, 0.10)
        .fill(Paint::linear(-0.6, 0, 0.2, 0, {{0, lighter(brass, 0.3)}, {0.5, brass}, {1, darker(brass, 0.4)}}));
    canvas.ellipse(-0.22, 0.80, 0.10, 0.03).fill(darker(brass, 0.3));
    constexpr auto arm = "M -0.22 0.79 C -0.92 0.20 -0.62 -0.98 0.20 -0.78";
    canvas.path(arm).stroke(darker(brass, 0.45), 0.062);
    canvas.path(arm).stroke(Paint::linear(-0.7, -0.6, 0, 0.8, {{0, lighter(brass, 0.35)}, {1, darker(brass, 0.1)}}),
                            0.042);
    canvas.circle(0.22, -0.78, 0.05).fill(brass);
    inShade(canvas, [&] { drawLampShade(canvas); });
}

void drawLampLight(Canvas& canvas) {
    inShade(canvas, [&] {
        canvas.path("M -0.41 0.20 L 0.41 0.20 L 0.98 1.60 L -0.86 1.60 Z")
            .fill(Paint::linear(0, 0.2, 0, 1.45,
                                {{0, withAlpha(warm, 0.46)}, {0.5, withAlpha(warm, 0.16)}, {1, withAlpha(warm, 0)}}));
        canvas.circle(0, 0.22, 0.7)
            .fill(Paint::radial(0, 0.22, 0.7,
                                {{0, withAlpha(warm, 0.5)}, {0.4, withAlpha(warm, 0.16)}, {1, withAlpha(warm, 0)}}));
    });
}

}  // namespace flarebox::examples
