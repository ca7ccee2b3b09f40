#include "Canvas.h"

#include <charconv>
#include <numbers>
#include <utility>

namespace flarebox::examples {
namespace {

constexpr double radians(double degrees) {
    return degrees * std::numbers::pi / 180;
}

/// Reads path data number by number.
class PathReader {
public:
    explicit PathReader(std::string_view data) : rest_(data) {}

    char command() {
        skipSpace();
        if (rest_.empty()) return 0;
        char letter = rest_.front();
        if (letter >= 'A' && letter <= 'Z') {
            rest_.remove_prefix(1);
            last_ = letter;
        }
        return last_;
    }

    double number() {
        skipSpace();
        double value = 0;
        auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
        rest_.remove_prefix(error == std::errc() ? static_cast<std::size_t>(end - rest_.data()) : rest_.size());
        return value;
    }

private:
    void skipSpace() {
        auto start = rest_.find_first_not_of(' ');
        rest_.remove_prefix(start == rest_.npos ? rest_.size() : start);
    }

    std::string_view rest_;
    char last_ = 0;
};

}  // namespace

Paint::Paint(Color color) : Paint(cairo_pattern_create_rgba(color.red, color.green, color.blue, color.alpha)) {}

Paint Paint::withStops(std::initializer_list<Stop> stops) && {
    for (const auto& [offset, color] : stops) {
        cairo_pattern_add_color_stop_rgba(pattern(), offset, color.red, color.green, color.blue, color.alpha);
    }
    return std::move(*this);
}

Paint Paint::linear(double x0, double y0, double x1, double y1, std::initializer_list<Stop> stops) {
    return Paint(cairo_pattern_create_linear(x0, y0, x1, y1)).withStops(stops);
}

Paint Paint::radial(double x, double y, double radius, std::initializer_list<Stop> stops) {
    return ball(x, y, radius, x, y, stops);
}

Paint Paint::ball(double x, double y, double radius, double lightX, double lightY, std::initializer_list<Stop> stops) {
    return Paint(cairo_pattern_create_radial(lightX, lightY, 0, x, y, radius)).withStops(stops);
}

Paint Paint::roundness(double left, double right) {
    return linear(left, 0, right, 0,
                  {{0, black(0.30)},
                   {0.09, black(0.06)},
                   {0.24, white(0.36)},
                   {0.38, white(0.06)},
                   {0.50, black(0.02)},
                   {0.74, black(0.28)},
                   {0.93, black(0.46)},
                   {1, black(0.26)}});
}

Canvas& Canvas::path(std::string_view data) {
    PathReader reader(data);
    while (char command = reader.command()) {
        if (command == 'Z') {
            cairo_close_path(context_);
            continue;
        }
        double x = reader.number();
        double y = reader.number();
        if (command == 'M') {
            cairo_move_to(context_, x, y);
        } else if (command == 'L') {
            cairo_line_to(context_, x, y);
        } else if (command == 'C') {
            double x2 = reader.number(), y2 = reader.number(), x3 = reader.number(), y3 = reader.number();
            cairo_curve_to(context_, x, y, x2, y2, x3, y3);
        } else if (command == 'Q') {
            double x2 = reader.number(), y2 = reader.number(), x0 = x, y0 = y;
            cairo_get_current_point(context_, &x0, &y0);
            cairo_curve_to(context_, x0 + (x - x0) * 2 / 3, y0 + (y - y0) * 2 / 3, x2 + (x - x2) * 2 / 3,
                           y2 + (y - y2) * 2 / 3, x2, y2);
        }
    }
    return *this;
}

Canvas& Canvas::line(double x0, double y0, double x1, double y1) {
    cairo_move_to(context_, x0, y0);
    cairo_line_to(context_, x1, y1);
    return *this;
}

Canvas& Canvas::ellipse(double x, double y, double radiusX, double radiusY) {
    cairo_save(context_);
    cairo_translate(context_, x, y);
    cairo_scale(context_, radiusX, radiusY);
    cairo_new_sub_path(context_);
    cairo_arc(context_, 0, 0, 1, 0, 2 * std::numbers::pi);
    cairo_close_path(context_);
    cairo_restore(context_);
    return *this;
}

Canvas& Canvas::arc(double x, double y, double radius, double from, double to) {
    cairo_new_sub_path(context_);
    cairo_arc(context_, x, y, radius, radians(from), radians(to));
    return *this;
}

Canvas& Canvas::box(double x, double y, double width, double height, double radius) {
    double right = x + width - radius, bottom = y + height - radius;
    double left = x + radius, top = y + radius;
    cairo_new_sub_path(context_);
    cairo_arc(context_, right, top, radius, radians(-90), 0);
    cairo_arc(context_, right, bottom, radius, 0, radians(90));
    cairo_arc(context_, left, bottom, radius, radians(90), radians(180));
    cairo_arc(context_, left, top, radius, radians(180), radians(270));
    cairo_close_path(context_);
    return *this;
}

void Canvas::fill(const Paint& paint) {
    cairo_set_source(context_, paint.pattern());
    cairo_fill(context_);
}

Canvas& Canvas::fillAnd(const Paint& paint) {
    cairo_set_source(context_, paint.pattern());
    cairo_fill_preserve(context_);
    return *this;
}

void Canvas::stroke(const Paint& paint, double width) {
    cairo_set_source(context_, paint.pattern());
    cairo_set_line_width(context_, width);
    cairo_set_line_cap(context_, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(context_, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(context_);
}

void Canvas::clipped(const Drawing& drawing) {
    cairo_save(context_);
    cairo_clip(context_);
    drawing();
    cairo_restore(context_);
}

void Canvas::turned(double degrees, const Drawing& drawing) {
    cairo_save(context_);
    cairo_rotate(context_, radians(degrees));
    drawing();
    cairo_restore(context_);
}

void Canvas::moved(double x, double y, const Drawing& drawing) {
    cairo_save(context_);
    cairo_translate(context_, x, y);
    drawing();
    cairo_restore(context_);
}

void Canvas::scaled(double x, double y, const Drawing& drawing) {
    cairo_save(context_);
    cairo_scale(context_, x, y);
    drawing();
    cairo_restore(context_);
}

void Canvas::mirrored(const Drawing& drawing) {
    drawing();
    scaled(-1, 1, drawing);
}

}  // namespace flarebox::examples
