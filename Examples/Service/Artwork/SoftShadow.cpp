#include "SoftShadow.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace flarebox::examples {
namespace {

// Softness hides pixels, so the shadow is made small and drawn large.
constexpr int pixelsPerUnit = 64;
constexpr double halfSide = 1.5;
constexpr int side = static_cast<int>(2 * halfSide * pixelsPerUnit);
constexpr int blurRadius = 5;
constexpr int blurPasses = 3;
constexpr double offsetX = 0.07;
constexpr double offsetY = 0.10;
constexpr double strength = 0.5;

// A running mean along one line of pixels that lie `step` bytes apart.
void blurLine(unsigned char* pixels, std::ptrdiff_t step) {
    constexpr int window = 2 * blurRadius + 1;
    std::vector<unsigned char> source(side);
    for (int index = 0; index < side; ++index) source[static_cast<std::size_t>(index)] = pixels[index * step];

    auto at = [&](int index) { return index < 0 || index >= side ? 0 : int{source[static_cast<std::size_t>(index)]}; };
    int sum = 0;
    for (int index = -blurRadius; index <= blurRadius; ++index) sum += at(index);
    for (int index = 0; index < side; ++index) {
        pixels[index * step] = static_cast<unsigned char>(sum / window);
        sum += at(index + blurRadius + 1) - at(index - blurRadius);
    }
}

void blur(cairo_surface_t* mask) {
    cairo_surface_flush(mask);
    unsigned char* pixels = cairo_image_surface_get_data(mask);
    std::ptrdiff_t stride = cairo_image_surface_get_stride(mask);
    for (int pass = 0; pass < blurPasses; ++pass) {
        for (int row = 0; row < side; ++row) blurLine(pixels + row * stride, 1);
        for (int column = 0; column < side; ++column) blurLine(pixels + column, stride);
    }
    cairo_surface_mark_dirty(mask);
}

}  // namespace

void drawSoftShadow(Canvas& canvas, void (*product)(Canvas&), Color color) {
    Surface mask(cairo_image_surface_create(CAIRO_FORMAT_A8, side, side));
    Context context(cairo_create(mask.get()));
    Canvas maskCanvas(context.get());
    maskCanvas.moved(side / 2.0, side / 2.0,
                     [&] { maskCanvas.scaled(pixelsPerUnit, pixelsPerUnit, [&] { product(maskCanvas); }); });
    blur(mask.get());

    canvas.moved(offsetX - halfSide, offsetY - halfSide, [&] {
        canvas.scaled(1.0 / pixelsPerUnit, 1.0 / pixelsPerUnit, [&] {
            cairo_set_source_rgba(canvas.context(), color.red, color.green, color.blue, strength);
            cairo_mask_surface(canvas.context(), mask.get(), 0, 0);
        });
    });
}

}  // namespace flarebox::examples
