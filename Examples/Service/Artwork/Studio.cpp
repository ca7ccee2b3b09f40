#include "Studio.h"

#include "SoftShadow.h"

#include <algorithm>

namespace flarebox::examples {
namespace {

struct Format {
    int width;
    int height;
    /// Pixels per unit of the product.
    double scale;
};

Format formatOf(PictureKind kind) {
    return kind == PictureKind::Icon ? Format{256, 256, 100} : Format{1080, 790, 292};
}

// A seamless paper roll: light from the upper left, a soft bend where the wall becomes the floor.
void drawBackdrop(Canvas& canvas, const Format& format, Color color) {
    double width = format.width, height = format.height;
    double reach = std::max(width, height);
    canvas.box(0, 0, width, height)
        .fillAnd(Paint::radial(width * 0.36, height * 0.28, reach * 0.95,
                               {{0, lighter(color, 0.30)},
                                {0.25, lighter(color, 0.17)},
                                {0.45, color},
                                {0.62, darker(color, 0.15)},
                                {1, darker(color, 0.52)}}))
        .fill(Paint::linear(0, height * 0.60, 0, height,
                            {{0, withAlpha(darker(color, 0.5), 0)},
                             {0.16, withAlpha(darker(color, 0.5), 0.26)},
                             {0.40, withAlpha(darker(color, 0.5), 0.10)},
                             {1, withAlpha(darker(color, 0.6), 0.30)}}));
    double radius = format.scale * 1.06;
    canvas.circle(width / 2, height / 2, radius)
        .fill(Paint::linear(width / 2 - radius, height / 2 - radius, width / 2 + radius, height / 2 + radius,
                            {{0, white(0.16)}, {0.7, white(0.02)}, {1, white(0)}}));
}

void drawFootprint(Canvas& canvas, const Scene& scene) {
    bool floats = scene.floor > 1;
    double y = floats ? 1.08 : scene.floor;
    Color shade = darker(scene.backdrop, 0.86);
    auto ellipse = [&](double width, double height, double strength) {
        canvas.moved(0.04, y, [&] {
            canvas.scaled(width, height, [&] {
                canvas.circle(0, 0, 1).fill(Paint::radial(0, 0, 1,
                                                          {{0, withAlpha(shade, strength)},
                                                           {0.5, withAlpha(shade, strength * 0.5)},
                                                           {1, withAlpha(shade, 0)}}));
            });
        });
    };
    ellipse(scene.footprint * 1.45, floats ? 0.10 : 0.13, floats ? 0.45 : 0.65);
    if (!floats) ellipse(scene.footprint * 1.08, 0.05, 0.8);
}

// One light for everything that is shown, laid over the product's own pixels only.
void drawLight(Canvas& canvas) {
    cairo_set_operator(canvas.context(), CAIRO_OPERATOR_ATOP);
    canvas.box(-2, -2, 4, 4)
        .fill(Paint::linear(-0.8, -0.9, 0.8, 0.9,
                            {{0, white(0.16)}, {0.45, white(0)}, {0.55, black(0)}, {1, black(0.22)}}));
}

void drawProduct(Canvas& canvas, const Scene& scene) {
    cairo_push_group(canvas.context());
    scene.draw(canvas);
    drawLight(canvas);
    cairo_pop_group_to_source(canvas.context());
    cairo_paint(canvas.context());
}

cairo_status_t append(void* target, const unsigned char* bytes, unsigned int count) {
    static_cast<std::string*>(target)->append(reinterpret_cast<const char*>(bytes), count);
    return CAIRO_STATUS_SUCCESS;
}

}  // namespace

std::string photograph(const Scene& scene, PictureKind kind) {
    Format format = formatOf(kind);
    Surface surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, format.width, format.height));
    Context context(cairo_create(surface.get()));
    Canvas canvas(context.get());

    drawBackdrop(canvas, format, scene.backdrop);
    canvas.moved(format.width / 2.0, format.height / 2.0, [&] {
        canvas.scaled(format.scale, format.scale, [&] {
            drawFootprint(canvas, scene);
            drawSoftShadow(canvas, scene.draw, darker(scene.backdrop, 0.8));
            drawProduct(canvas, scene);
            if (scene.aura) scene.aura(canvas);
        });
    });

    std::string png;
    cairo_surface_write_to_png_stream(surface.get(), append, &png);
    return png;
}

}  // namespace flarebox::examples
