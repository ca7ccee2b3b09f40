#include "Products.h"

#include <cmath>

namespace flarebox::examples {
namespace {

constexpr Color cream = rgb(0xF4EEE4);
constexpr Color ink = rgb(0x26243C);
constexpr Color coral = rgb(0xFF8A5C);
constexpr Color steel = rgb(0xB9BEC9);

void drawEarCup(Canvas& canvas) {
    canvas.path("M 0.645 -0.10 L 0.655 0.16").stroke(darker(steel, 0.35), 0.075);
    canvas.path("M 0.645 -0.10 L 0.655 0.16").stroke(steel, 0.045);
    canvas.box(0.37, -0.06, 0.26, 0.82, 0.13)
        .fill(Paint::linear(0.37, 0, 0.63, 0, {{0, lighter(ink, 0.16)}, {0.5, ink}, {1, darker(ink, 0.45)}}));
    canvas.path("M 0.44 0.04 L 0.44 0.66").stroke(white(0.10), 0.03);
    canvas
        .path(
            "M 0.60 -0.06 C 0.84 -0.06 0.95 0.14 0.95 0.35 C 0.95 0.56 0.84 0.76 0.60 0.76 "
            "C 0.55 0.76 0.53 0.74 0.53 0.69 L 0.53 0.01 C 0.53 -0.04 0.55 -0.06 0.60 -0.06 Z")
        .fill(Paint::linear(0.53, -0.06, 0.95, 0.76,
                            {{0, white()}, {0.35, cream}, {0.75, darker(cream, 0.16)}, {1, darker(cream, 0.32)}}));
    canvas
        .path(
            "M 0.60 -0.06 C 0.555 -0.05 0.53 -0.03 0.53 0.01 L 0.53 0.69 C 0.53 0.73 0.555 0.75 0.60 0.76 "
            "C 0.575 0.74 0.57 0.72 0.57 0.69 L 0.57 0.01 C 0.57 -0.02 0.575 -0.04 0.60 -0.06 Z")
        .fill(coral);
    canvas.path("M 0.865 0.22 C 0.885 0.30 0.885 0.40 0.865 0.48").stroke(darker(cream, 0.28), 0.022);
}

}  // namespace

void drawHeadphones(Canvas& canvas) {
    canvas.path("M -0.65 0.04 C -0.80 -1.12 0.80 -1.12 0.65 0.04")
        .stroke(Paint::linear(-0.65, -0.8, 0.65, 0.1, {{0, white()}, {0.5, cream}, {1, darker(cream, 0.28)}}), 0.15);
    canvas.path("M -0.50 -0.44 C -0.36 -0.86 0.36 -0.86 0.50 -0.44")
        .stroke(Paint::linear(0, -0.76, 0, -0.45, {{0, lighter(ink, 0.14)}, {1, darker(ink, 0.3)}}), 0.11);
    canvas.path("M -0.60 -0.42 C -0.52 -0.66 -0.36 -0.77 -0.16 -0.81").stroke(white(0.9), 0.022);
    canvas.mirrored([&] { drawEarCup(canvas); });
    canvas.circle(-0.74, 0.62, 0.018).fill(rgb(0x3DDC97));
}

void drawSpeaker(Canvas& canvas) {
    canvas.path("M 0.62 -0.38 C 1.02 -0.44 1.10 0.02 0.80 0.16").stroke(darker(coral, 0.25), 0.085);
    canvas.path("M 0.62 -0.39 C 1.01 -0.45 1.09 0.01 0.79 0.15").stroke(coral, 0.06);
    canvas.box(-0.18, -0.66, 0.36, 0.14, 0.06)
        .fill(Paint::linear(-0.18, 0, 0.18, 0, {{0, lighter(steel, 0.5)}, {1, darker(steel, 0.4)}}));

    constexpr auto body =
        "M 0 -0.60 C 0.60 -0.60 0.86 -0.44 0.86 0.04 C 0.86 0.50 0.60 0.68 0 0.68 "
        "C -0.60 0.68 -0.86 0.50 -0.86 0.04 C -0.86 -0.44 -0.60 -0.60 0 -0.60 Z";
    canvas.path(body).fill(
        Paint::ball(0, 0.04, 1.15, -0.34, -0.42,
                    {{0, white()}, {0.4, cream}, {0.8, darker(cream, 0.2)}, {1, darker(cream, 0.36)}}));

    constexpr auto grille =
        "M 0 -0.48 C 0.50 -0.48 0.73 -0.34 0.73 0.04 C 0.73 0.42 0.50 0.56 0 0.56 "
        "C -0.50 0.56 -0.73 0.42 -0.73 0.04 C -0.73 -0.34 -0.50 -0.48 0 -0.48 Z";
    canvas.path(grille).fill(Paint::ball(0, 0.04, 0.8, -0.3, -0.3, {{0, lighter(ink, 0.22)}, {1, darker(ink, 0.25)}}));
    canvas.path(grille).clipped([&] {
        constexpr double pitch = 0.062;
        for (int row = -10; row <= 10; ++row) {
            for (int column = -13; column <= 13; ++column) {
                double x = (column + (row % 2 == 0 ? 0 : 0.5)) * pitch;
                double y = 0.04 + row * pitch * 0.87;
                double reach = std::hypot(x / 0.73, (y - 0.04) / 0.52);
                canvas.circle(x, y, 0.017 * (1.15 - 0.45 * reach)).fill(lighter(ink, 0.42 - 0.25 * reach));
            }
        }
    });
    canvas.path(grille).stroke(Paint::linear(-0.6, -0.5, 0.6, 0.6, {{0, black(0.35)}, {1, white(0.5)}}), 0.018);
    canvas.circle(0, 0.615, 0.017).fill(rgb(0x3DDC97));
}

}  // namespace flarebox::examples
