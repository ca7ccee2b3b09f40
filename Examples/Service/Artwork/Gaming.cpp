#include "Products.h"

namespace flarebox::examples {
namespace {

constexpr Color carbon = rgb(0x23262E);
constexpr Color cream = rgb(0xF1ECF7);
constexpr Color amber = rgb(0xFFC857);
constexpr Color mint = rgb(0x5BE0B0);
constexpr Color coral = rgb(0xFF7058);
constexpr Color sky = rgb(0x6DB9FF);

void drawButton(Canvas& canvas, double x, double y, double radius, Color color) {
    canvas.circle(x, y + radius * 0.18, radius * 1.12).fill(black(0.35));
    canvas.circle(x, y, radius)
        .fill(Paint::ball(x, y, radius, x - radius * 0.4, y - radius * 0.5,
                          {{0, lighter(color, 0.5)}, {1, darker(color, 0.12)}}));
}

void drawRim(Canvas& canvas) {
    auto rim = [&]() -> Canvas& {
        canvas.arc(0, 0, 0.80, 128, 412);
        cairo_close_path(canvas.context());
        return canvas;
    };
    rim().stroke(Paint::linear(-0.7, -0.8, 0.7, 0.8, {{0, rgb(0x5A606D)}, {0.4, carbon}, {1, rgb(0x0C0D11)}}), 0.225);
    rim().stroke(Paint::linear(-0.7, -0.8, 0.7, 0.8, {{0, rgb(0x454A56)}, {0.5, rgb(0x2A2D36)}, {1, rgb(0x15171C)}}),
                 0.17);
    for (double start : {-36.0, 144.0}) {
        canvas.arc(0, 0, 0.80, start, start + 72).stroke(rgb(0x12141A), 0.235);
        canvas.arc(0, 0, 0.80, start, start + 72)
            .stroke(Paint::linear(-0.8, -0.5, 0.8, 0.5, {{0, rgb(0x5C6270)}, {0.5, rgb(0x343842)}, {1, rgb(0x23262D)}}),
                    0.19);
        canvas.arc(0, 0, 0.715, start + 3, start + 69).stroke(coral, 0.014);
    }
    canvas.arc(0, 0, 0.80, 265, 275).stroke(amber, 0.19);
    canvas.arc(0, 0, 0.865, 200, 255).stroke(white(0.28), 0.018);
}

void drawHub(Canvas& canvas) {
    canvas.mirrored([&] {
        canvas.path("M 0.30 -0.30 L 0.50 -0.40 C 0.57 -0.42 0.60 -0.34 0.58 -0.26 L 0.52 -0.02 L 0.30 0.02 Z")
            .fill(rgb(0xE9B44C));
        canvas.path("M 0.28 -0.14 C 0.48 -0.14 0.62 -0.12 0.74 -0.14 L 0.76 0.08 C 0.62 0.08 0.48 0.14 0.28 0.20 Z")
            .fill(Paint::linear(0, -0.15, 0, 0.2, {{0, rgb(0xA9AFBB)}, {1, rgb(0x4C515C)}}));
    });
    canvas.path("M -0.16 0.16 L 0.16 0.16 L 0.26 0.64 L -0.26 0.64 Z")
        .fill(Paint::linear(-0.2, 0.2, 0.2, 0.6, {{0, rgb(0x9AA0AC)}, {1, rgb(0x40444E)}}));
    canvas.box(-0.07, 0.34, 0.14, 0.22, 0.07).fill(rgb(0x3A1714, 0.85));

    canvas.box(-0.42, -0.31, 0.84, 0.58, 0.16)
        .fill(Paint::linear(-0.4, -0.3, 0.4, 0.3, {{0, rgb(0x4B505C)}, {0.5, rgb(0x2B2E37)}, {1, rgb(0x16181E)}}));
    canvas.box(-0.24, -0.23, 0.48, 0.24, 0.04).fill(rgb(0x0B0D12));
    for (int bar = 0; bar < 9; ++bar) {
        Color color = bar < 5 ? mint : bar < 7 ? amber : coral;
        canvas.box(-0.205 + bar * 0.047, -0.06 - bar * 0.013, 0.03, 0.035 + bar * 0.013, 0.008).fill(color);
    }
    canvas.box(-0.205, -0.20, 0.13, 0.03, 0.015).fill(white(0.75));
    drawButton(canvas, -0.33, -0.16, 0.045, sky);
    drawButton(canvas, -0.33, 0.00, 0.045, amber);
    drawButton(canvas, 0.33, -0.16, 0.045, mint);
    drawButton(canvas, 0.33, 0.00, 0.045, coral);
    for (double x : {-0.17, 0.0, 0.17}) {
        canvas.circle(x, 0.14, 0.062).fill(rgb(0x0E1015));
        canvas.circle(x, 0.135, 0.048).fill(Paint::linear(x, 0.09, x, 0.19, {{0, rgb(0x7B8290)}, {1, rgb(0x3A3E48)}}));
        canvas.line(x, 0.135, x + 0.02, 0.10).stroke(white(0.9), 0.014);
    }
}

void drawStick(Canvas& canvas, double x, double y) {
    canvas.circle(x, y, 0.155).fill(rgb(0xB9AECB));
    canvas.circle(x, y, 0.14).fill(rgb(0x17161F));
    canvas.circle(x - 0.008, y - 0.014, 0.108)
        .fill(Paint::linear(x - 0.1, y - 0.1, x + 0.1, y + 0.1, {{0, rgb(0x666277)}, {1, rgb(0x2A2834)}}));
    canvas.circle(x - 0.008, y - 0.014, 0.07)
        .fill(Paint::linear(x - 0.07, y - 0.07, x + 0.07, y + 0.07, {{0, rgb(0x2D2B38)}, {1, rgb(0x5A566B)}}));
}

}  // namespace

void drawRacingWheel(Canvas& canvas) {
    drawHub(canvas);
    drawRim(canvas);
}

void drawController(Canvas& canvas) {
    canvas.mirrored([&] {
        canvas.path("M 0.30 -0.46 C 0.34 -0.56 0.50 -0.58 0.62 -0.50 C 0.70 -0.44 0.72 -0.38 0.70 -0.32 L 0.30 -0.36 Z")
            .fill(rgb(0x2C2938));
    });
    constexpr auto body =
        "M -0.54 -0.44 C -0.36 -0.50 -0.24 -0.42 0 -0.42 C 0.24 -0.42 0.36 -0.50 0.54 -0.44 "
        "C 0.82 -0.36 0.96 0.14 0.98 0.44 C 0.99 0.70 0.74 0.74 0.62 0.56 "
        "C 0.54 0.43 0.48 0.33 0.32 0.33 L -0.32 0.33 C -0.48 0.33 -0.54 0.43 -0.62 0.56 "
        "C -0.74 0.74 -0.99 0.70 -0.98 0.44 C -0.96 0.14 -0.82 -0.36 -0.54 -0.44 Z";
    canvas.path(body)
        .fillAnd(Paint::linear(-0.5, -0.5, 0.5, 0.7, {{0, white()}, {0.45, cream}, {1, rgb(0xB4A8C8)}}))
        .clipped([&] {
            canvas.mirrored([&] {
                canvas.path("M 1.1 0.02 C 0.86 0.10 0.70 0.30 0.60 0.80 L 1.1 0.9 Z").fill(rgb(0x2C2938));
                canvas.path("M 1.1 0.02 C 0.86 0.10 0.70 0.30 0.60 0.80").stroke(coral, 0.022);
            });
            canvas.path("M -0.9 0.0 C -0.82 -0.30 -0.66 -0.40 -0.50 -0.41 C -0.30 -0.45 -0.2 -0.39 0 -0.39")
                .stroke(white(0.9), 0.025);
        });

    canvas.box(-0.19, -0.34, 0.38, 0.25, 0.05)
        .fill(Paint::linear(0, -0.34, 0, -0.09, {{0, rgb(0x3B3749)}, {1, rgb(0x221F2C)}}));
    canvas.box(-0.15, -0.115, 0.30, 0.018, 0.009).fill(mint);
    canvas.circle(0, 0.02, 0.04).fill(coral);

    canvas.box(-0.60, -0.225, 0.26, 0.09, 0.03).fill(rgb(0x2C2938));
    canvas.box(-0.515, -0.31, 0.09, 0.26, 0.03).fill(rgb(0x2C2938));
    canvas.circle(-0.47, -0.18, 0.025).fill(rgb(0x4A465B));
    drawButton(canvas, 0.47, -0.30, 0.055, amber);
    drawButton(canvas, 0.47, -0.06, 0.055, mint);
    drawButton(canvas, 0.35, -0.18, 0.055, sky);
    drawButton(canvas, 0.59, -0.18, 0.055, coral);
    drawStick(canvas, -0.27, 0.13);
    drawStick(canvas, 0.27, 0.13);
}

}  // namespace flarebox::examples
