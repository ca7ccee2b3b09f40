#include <UIKit/Backend/Pango/PangoText.h>
#include <UIKit/BitmapCanvas.h>
#include <UIKit/FontOpening.h>
#include <UIKit/UIImage.h>

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace flarebox {
namespace {

constexpr CGFloat quarterTurn = std::numbers::pi / 2;

class CairoCanvas final : public Canvas {
public:
    CairoCanvas(std::uint32_t* pixels, int width, int height, int stridePixels, CGFloat scale) : scale_(scale) {
        surface_ = cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(pixels), CAIRO_FORMAT_ARGB32,
                                                       width, height, stridePixels * 4);
        cairo_ = cairo_create(surface_);
        cairo_scale(cairo_, scale, scale);
        cairo_set_line_cap(cairo_, CAIRO_LINE_CAP_ROUND);
        cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
        cairo_set_tolerance(cairo_, 0.05);
    }
    ~CairoCanvas() override {
        cairo_destroy(cairo_);
        cairo_surface_flush(surface_);
        cairo_surface_destroy(surface_);
    }
    CairoCanvas(const CairoCanvas&) = delete;
    CairoCanvas& operator=(const CairoCanvas&) = delete;

    CGFloat scale() const override { return scale_; }

    void save() override { cairo_save(cairo_); }
    void restore() override { cairo_restore(cairo_); }
    void translate(CGFloat dx, CGFloat dy) override { cairo_translate(cairo_, dx, dy); }
    void scaleBy(CGFloat sx, CGFloat sy) override { cairo_scale(cairo_, sx, sy); }
    void rotate(CGFloat radians) override { cairo_rotate(cairo_, radians); }

    void clipRoundedRect(const CGRect& rect, const CornerRadii& radii) override {
        cairo_new_path(cairo_);
        addRoundedRect(snapped(rect), radii);
        cairo_clip(cairo_);
    }

    void fillRoundedRect(const CGRect& rect, const CornerRadii& radii, const UIColor& color) override {
        if (rect.isEmpty() || color.isClear()) return;
        cairo_new_path(cairo_);
        addRoundedRect(snapped(rect), radii);
        setSource(color);
        cairo_fill(cairo_);
    }

    void strokeRoundedRect(const CGRect& rect, const CornerRadii& radii, CGFloat lineWidth,
                           const UIColor& color) override {
        if (rect.isEmpty() || color.isClear() || !(lineWidth > 0)) return;
        const CGRect outer = snapped(rect);
        const CGFloat line = wholePixels(lineWidth);
        const CGRect inner = outer.inset(line, line);
        const auto inset = [line](CGFloat radius) { return std::max(0.0, radius - line); };
        // The ring between two outlines: its edges lie on whole pixels, and its corners keep their width.
        cairo_new_path(cairo_);
        addRoundedRect(outer, radii);
        if (!inner.isEmpty())
            addRoundedRect(inner, {inset(radii.topLeft), inset(radii.topRight), inset(radii.bottomRight),
                                   inset(radii.bottomLeft)});
        setSource(color);
        cairo_set_fill_rule(cairo_, CAIRO_FILL_RULE_EVEN_ODD);
        cairo_fill(cairo_);
        cairo_set_fill_rule(cairo_, CAIRO_FILL_RULE_WINDING);
    }

    void fillGradient(const CGRect& rect, const UIColor& start, const UIColor& end, bool horizontal) override {
        if (rect.isEmpty()) return;
        const CGRect area = snapped(rect);
        cairo_pattern_t* gradient = cairo_pattern_create_linear(
            area.minX(), area.minY(), horizontal ? area.maxX() : area.minX(), horizontal ? area.minY() : area.maxY());
        cairo_pattern_add_color_stop_rgba(gradient, 0, start.red, start.green, start.blue, start.alpha);
        cairo_pattern_add_color_stop_rgba(gradient, 1, end.red, end.green, end.blue, end.alpha);
        cairo_new_path(cairo_);
        cairo_rectangle(cairo_, area.minX(), area.minY(), area.width(), area.height());
        cairo_set_source(cairo_, gradient);
        cairo_fill(cairo_);
        cairo_pattern_destroy(gradient);
    }

    void moveTo(CGPoint point) override { cairo_move_to(cairo_, point.x, point.y); }
    void lineTo(CGPoint point) override { cairo_line_to(cairo_, point.x, point.y); }
    void curveTo(CGPoint control1, CGPoint control2, CGPoint end) override {
        cairo_curve_to(cairo_, control1.x, control1.y, control2.x, control2.y, end.x, end.y);
    }
    void arc(CGPoint center, CGFloat radius, CGFloat startAngle, CGFloat endAngle) override {
        if (radius > 0) cairo_arc(cairo_, center.x, center.y, radius, startAngle, endAngle);
    }
    void closePath() override { cairo_close_path(cairo_); }
    void fillPath(const UIColor& color) override {
        setSource(color);
        cairo_fill(cairo_);
    }
    void strokePath(const UIColor& color, CGFloat lineWidth) override {
        setSource(color);
        cairo_set_line_width(cairo_, std::max(0.0, lineWidth));
        cairo_stroke(cairo_);
    }

    void drawImage(const UIImage& image, const CGRect& rect) override {
        if (rect.isEmpty()) return;
        // The library only reads from the source of a picture.
        auto* bytes = reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(image.pixels().data()));
        cairo_surface_t* source = cairo_image_surface_create_for_data(bytes, CAIRO_FORMAT_ARGB32, image.pixelWidth(),
                                                                      image.pixelHeight(), image.pixelWidth() * 4);
        const CGRect area = snapped(rect);
        cairo_save(cairo_);
        cairo_rectangle(cairo_, area.minX(), area.minY(), area.width(), area.height());
        cairo_clip(cairo_);
        cairo_translate(cairo_, area.minX(), area.minY());
        cairo_scale(cairo_, area.width() / image.pixelWidth(), area.height() / image.pixelHeight());
        cairo_set_source_surface(cairo_, source, 0, 0);
        // What is not made smaller looks the same with the plain filter, which is several times as fast.
        const bool isSmaller = std::min(pixelsOf(1, 0), pixelsOf(0, 1)) < 0.999;
        cairo_pattern_set_filter(cairo_get_source(cairo_), isSmaller ? CAIRO_FILTER_GOOD : CAIRO_FILTER_BILINEAR);
        // Without it the outermost pixels would fade into nothing.
        cairo_pattern_set_extend(cairo_get_source(cairo_), CAIRO_EXTEND_PAD);
        cairo_paint(cairo_);
        cairo_restore(cairo_);
        cairo_surface_destroy(source);
    }

    void drawText(std::string_view text, const TextStyle& style, const CGRect& rect) override {
        cairo_new_path(cairo_);
        if (fontsAreOpening()) return;
        text::draw(*cairo_, text, style, rect);
    }

private:
    void setSource(const UIColor& color) {
        cairo_set_source_rgba(cairo_, color.red, color.green, color.blue, color.alpha);
    }

    void addRoundedRect(const CGRect& rect, const CornerRadii& radii) {
        const CGFloat largest = std::max(0.0, std::min(rect.width(), rect.height()) / 2);
        const auto corner = [&](CGFloat x, CGFloat y, CGFloat dx, CGFloat dy, CGFloat wanted, int quarter) {
            const CGFloat radius = std::clamp(wanted, 0.0, largest);
            if (!(radius > 0)) return cairo_line_to(cairo_, x, y);
            cairo_arc(cairo_, x + dx * radius, y + dy * radius, radius, quarter * quarterTurn,
                      (quarter + 1) * quarterTurn);
        };
        cairo_new_sub_path(cairo_);
        corner(rect.maxX(), rect.minY(), -1, 1, radii.topRight, 3);
        corner(rect.maxX(), rect.maxY(), -1, -1, radii.bottomRight, 0);
        corner(rect.minX(), rect.maxY(), 1, -1, radii.bottomLeft, 1);
        corner(rect.minX(), rect.minY(), 1, 1, radii.topLeft, 2);
        cairo_close_path(cairo_);
    }

    /// The rectangle with its edges on whole pixels, never thinner than one; as it is on a turned canvas.
    CGRect snapped(const CGRect& rect) const {
        cairo_matrix_t m;
        cairo_get_matrix(cairo_, &m);
        if (m.xy != 0 || m.yx != 0 || !(m.xx > 0) || !(m.yy > 0)) return rect;
        const auto edges = [](CGFloat low, CGFloat high, CGFloat factor, CGFloat offset) {
            const CGFloat first = std::round(low * factor + offset);
            const CGFloat last = std::max(std::round(high * factor + offset), first + 1);
            return std::pair{(first - offset) / factor, (last - offset) / factor};
        };
        const auto [left, right] = edges(rect.minX(), rect.maxX(), m.xx, m.x0);
        const auto [top, bottom] = edges(rect.minY(), rect.maxY(), m.yy, m.y0);
        return CGRectMake(left, top, right - left, bottom - top);
    }

    /// How long that way is on the bitmap.
    CGFloat pixelsOf(CGFloat dx, CGFloat dy) const {
        cairo_user_to_device_distance(cairo_, &dx, &dy);
        return std::hypot(dx, dy);
    }

    /// The length as a whole number of pixels, at least one.
    CGFloat wholePixels(CGFloat length) const {
        const CGFloat factor = pixelsOf(1, 0);
        return factor > 0 ? std::max(1.0, std::round(length * factor)) / factor : length;
    }

    CGFloat scale_;
    cairo_surface_t* surface_;
    cairo_t* cairo_;
};

}  // namespace

std::unique_ptr<Canvas> makeBitmapCanvas(std::uint32_t* pixels, int width, int height, int stridePixels,
                                         CGFloat scale) {
    return std::make_unique<CairoCanvas>(pixels, width, height, stridePixels, scale > 0 ? scale : 1);
}

}  // namespace flarebox
