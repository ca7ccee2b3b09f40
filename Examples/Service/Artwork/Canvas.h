#pragma once

#include <cairo.h>

#include <functional>
#include <initializer_list>
#include <memory>
#include <string_view>

namespace flarebox::examples {

struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
};

/// From 0xRRGGBB.
constexpr Color rgb(unsigned code, double alpha = 1) {
    return {(code >> 16 & 255) / 255.0, (code >> 8 & 255) / 255.0, (code & 255) / 255.0, alpha};
}

constexpr Color white(double alpha = 1) {
    return {1, 1, 1, alpha};
}

constexpr Color black(double alpha = 1) {
    return {0, 0, 0, alpha};
}

constexpr Color withAlpha(Color color, double alpha) {
    return {color.red, color.green, color.blue, alpha};
}

/// `share` 0 gives the first colour, 1 the second.
constexpr Color mix(Color first, Color second, double share) {
    auto between = [share](double from, double to) { return from + (to - from) * share; };
    return {between(first.red, second.red), between(first.green, second.green), between(first.blue, second.blue),
            between(first.alpha, second.alpha)};
}

constexpr Color lighter(Color color, double share) {
    return mix(color, white(color.alpha), share);
}

constexpr Color darker(Color color, double share) {
    return mix(color, black(color.alpha), share);
}

struct DestroySurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct DestroyContext {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using Surface = std::unique_ptr<cairo_surface_t, DestroySurface>;
using Context = std::unique_ptr<cairo_t, DestroyContext>;

struct Stop {
    double offset;
    Color color;
};

/// What a shape is filled or stroked with.
class Paint {
public:
    Paint(Color color);
    static Paint linear(double x0, double y0, double x1, double y1, std::initializer_list<Stop> stops);
    static Paint radial(double x, double y, double radius, std::initializer_list<Stop> stops);
    /// Around one point, but brightest at another inside.
    static Paint ball(double x, double y, double radius, double lightX, double lightY,
                      std::initializer_list<Stop> stops);
    /// Light and shade to lay over a body as round as a can: lit from the left, dark on the right, a reflected rim.
    static Paint roundness(double left, double right);

    cairo_pattern_t* pattern() const { return pattern_.get(); }

private:
    explicit Paint(cairo_pattern_t* pattern) : pattern_(pattern) {}
    Paint withStops(std::initializer_list<Stop> stops) &&;

    struct Destroy {
        void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
    };
    std::unique_ptr<cairo_pattern_t, Destroy> pattern_;
};

/// Draws in units that grow to the right and downwards. Shapes add to the current path; filling, stroking and
/// clipping use it up.
class Canvas {
public:
    /// Borrows the context.
    explicit Canvas(cairo_t* context) : context_(context) {}
    cairo_t* context() const { return context_; }

    /// Path data with the commands M, L, C, Q and Z, all absolute.
    Canvas& path(std::string_view data);
    Canvas& line(double x0, double y0, double x1, double y1);
    Canvas& circle(double x, double y, double radius) { return ellipse(x, y, radius, radius); }
    Canvas& ellipse(double x, double y, double radiusX, double radiusY);
    /// Angles in degrees, clockwise from the right.
    Canvas& arc(double x, double y, double radius, double from, double to);
    Canvas& box(double x, double y, double width, double height, double radius = 0);

    void fill(const Paint& paint);
    /// Also keeps the path for another fill, a stroke or a clip.
    Canvas& fillAnd(const Paint& paint);
    /// Round caps and joins.
    void stroke(const Paint& paint, double width);

    using Drawing = std::function<void()>;
    /// Draws inside the current path only.
    void clipped(const Drawing& drawing);
    void turned(double degrees, const Drawing& drawing);
    void moved(double x, double y, const Drawing& drawing);
    void scaled(double x, double y, const Drawing& drawing);
    /// Draws twice: as it is and mirrored at the vertical axis.
    void mirrored(const Drawing& drawing);

private:
    cairo_t* context_;
};

}  // namespace flarebox::examples
