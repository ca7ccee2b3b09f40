#include <UIKit/VectorIcon.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace flarebox {
namespace {

constexpr CGFloat pi = std::numbers::pi;
constexpr CGFloat fullBoldnessSide = 36;
using Points = std::span<const CGPoint>;

/// Draws in units of the grid, every line alike.
class Pen {
public:
    Pen(Canvas& canvas, const UIColor& color, CGFloat width) : canvas_(canvas), color_(color), width_(width) {}

    template <std::size_t N>
    void line(const CGPoint (&points)[N]) {
        trace(points);
        stroke();
    }
    /// A closed outline with corners of that radius.
    template <std::size_t N>
    void outline(const CGPoint (&points)[N], CGFloat radius) {
        traceRounded(points, radius);
        stroke();
    }
    template <std::size_t N>
    void solid(const CGPoint (&points)[N], CGFloat radius) {
        traceRounded(points, radius);
        canvas_.fillPath(color_);
    }
    void arc(CGPoint center, CGFloat radius, CGFloat from, CGFloat to) {
        canvas_.moveTo(center + CGPoint{radius * std::cos(from), radius * std::sin(from)});
        canvas_.arc(center, radius, from, to);
        stroke();
    }
    void circle(CGPoint center, CGFloat radius) { arc(center, radius, 0, 2 * pi); }
    void dot(CGPoint center, CGFloat radius) {
        canvas_.moveTo({center.x + radius, center.y});
        canvas_.arc(center, radius, 0, 2 * pi);
        canvas_.fillPath(color_);
    }
    void stroke() { canvas_.strokePath(color_, width_); }

private:
    void trace(Points points) {
        canvas_.moveTo(points[0]);
        for (const CGPoint point : points.subspan(1)) canvas_.lineTo(point);
    }
    void traceRounded(Points points, CGFloat radius) {
        for (std::size_t i = 0; i < points.size(); ++i) {
            const CGPoint corner = points[i];
            const CGPoint before = towards(corner, points[(i + points.size() - 1) % points.size()], radius);
            const CGPoint after = towards(corner, points[(i + 1) % points.size()], radius);
            if (i == 0)
                canvas_.moveTo(before);
            else
                canvas_.lineTo(before);
            canvas_.curveTo(towards(before, corner, radius * 0.6), towards(after, corner, radius * 0.6), after);
        }
        canvas_.closePath();
    }
    static CGPoint towards(CGPoint from, CGPoint to, CGFloat distance) {
        const CGFloat length = std::hypot(to.x - from.x, to.y - from.y);
        const CGFloat part = length > 0 ? std::min(distance / length, 0.5) : 0;
        return {from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
    }

    Canvas& canvas_;
    const UIColor& color_;
    CGFloat width_;
};

void drawClose(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen pen(canvas, color, width);
    pen.line({{6, 6}, {18, 18}});
    pen.line({{18, 6}, {6, 18}});
}

void drawPicture(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen pen(canvas, color, width);
    pen.outline({{3.25, 4.5}, {20.75, 4.5}, {20.75, 19.5}, {3.25, 19.5}}, 3);
    pen.circle({8.5, 9.25}, 1.6);
    pen.line({{4, 17.75}, {9, 13.25}, {11.75, 15.75}, {15.5, 11.75}, {20.25, 16.5}});
}

void drawCube(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen pen(canvas, color, width);
    pen.outline({{12, 2.5}, {20.25, 7.25}, {20.25, 16.75}, {12, 21.5}, {3.75, 16.75}, {3.75, 7.25}}, 1.5);
    pen.line({{4.25, 7.5}, {12, 12}, {19.75, 7.5}});
    pen.line({{12, 12}, {12, 21}});
}

void drawPlay(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen(canvas, color, width).solid({{6.5, 3}, {21, 12}, {6.5, 21}}, 2);
}

void drawVideo(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen(canvas, color, width).outline({{6, 3.5}, {20, 12}, {6, 20.5}}, 2.25);
}

void drawPause(Canvas& canvas, const UIColor& color, CGFloat) {
    for (const CGFloat left : {5.5, 14.0})
        canvas.fillRoundedRect(CGRectMake(left, 4, 4.5, 16), CornerRadii::all(1.25), color);
}

void drawChevronLeft(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen(canvas, color, width).line({{15, 5}, {8, 12}, {15, 19}});
}
void drawChevronRight(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen(canvas, color, width).line({{9, 5}, {16, 12}, {9, 19}});
}

void drawFlare(Canvas& canvas, const UIColor& color, CGFloat) {
    constexpr CGPoint core = {7.75, 16.25};
    constexpr CGFloat radius = 4.75, start = 8.25;
    struct Ray {
        CGFloat degrees, end;
    };
    // The mark of the brand is bolder than a sign, at every size.
    Pen pen(canvas, color, VectorIcon::lineWidth * 1.3);
    for (const Ray ray : {Ray{-90, 12.5}, Ray{-45, 17.25}, Ray{0, 12.5}}) {
        const CGFloat angle = ray.degrees * pi / 180;
        const auto at = [&](CGFloat r) { return core + CGPoint{r * std::cos(angle), r * std::sin(angle)}; };
        pen.line({at(start), at(ray.end)});
    }
    pen.dot(core, radius);
}

void drawWarning(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen pen(canvas, color, width);
    pen.outline({{12, 2.5}, {22.25, 20.5}, {1.75, 20.5}}, 2.75);
    pen.line({{12, 9.25}, {12, 13.5}});
    pen.dot({12, 16.9}, 1.15);
}

void drawCheck(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen(canvas, color, width).line({{4.75, 12.75}, {9.75, 17.75}, {19.25, 7}});
}

void drawEmptyBox(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen pen(canvas, color, width);
    pen.line({{4, 12.75}, {4, 17}, {12, 20.75}, {20, 17}, {20, 12.75}});
    pen.line({{12, 12}, {12, 20.25}});
    pen.outline({{12, 5.25}, {20, 8.5}, {12, 12}, {4, 8.5}}, 0.5);
    pen.line({{4, 8.5}, {1.75, 11.25}, {9.5, 14.5}, {12, 12}, {14.5, 14.5}, {22.25, 11.25}, {20, 8.5}});
}

void drawCoupon(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen pen(canvas, color, width);
    constexpr CGFloat left = 2.5, top = 6, right = 21.5, bottom = 18, corner = 2, fold = 15, notch = 1.75;
    canvas.moveTo({left + corner, top});
    canvas.lineTo({fold - notch, top});
    canvas.curveTo({fold - notch, top + 2.4}, {fold + notch, top + 2.4}, {fold + notch, top});
    canvas.lineTo({right - corner, top});
    canvas.arc({right - corner, top + corner}, corner, -pi / 2, 0);
    canvas.arc({right - corner, bottom - corner}, corner, 0, pi / 2);
    canvas.lineTo({fold + notch, bottom});
    canvas.curveTo({fold + notch, bottom - 2.4}, {fold - notch, bottom - 2.4}, {fold - notch, bottom});
    canvas.lineTo({left + corner, bottom});
    canvas.arc({left + corner, bottom - corner}, corner, pi / 2, pi);
    canvas.arc({left + corner, top + corner}, corner, pi, 3 * pi / 2);
    canvas.closePath();
    pen.stroke();
    pen.line({{6.5, 10.25}, {11, 10.25}});
    pen.line({{6.5, 13.75}, {9.25, 13.75}});
    pen.dot({fold, 12}, 1);
}

void drawCart(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen pen(canvas, color, width);
    pen.line({{2, 3.75}, {4.75, 3.75}, {7.25, 15.25}, {18.25, 15.25}, {20.75, 7}, {5.6, 7}});
    pen.dot({9, 19.5}, 1.75);
    pen.dot({16.75, 19.5}, 1.75);
}

void drawFullscreenEnter(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen pen(canvas, color, width);
    pen.line({{4, 9.25}, {4, 4}, {9.25, 4}});
    pen.line({{14.75, 4}, {20, 4}, {20, 9.25}});
    pen.line({{20, 14.75}, {20, 20}, {14.75, 20}});
    pen.line({{9.25, 20}, {4, 20}, {4, 14.75}});
}

void drawFullscreenExit(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen pen(canvas, color, width);
    pen.line({{3.75, 9}, {9, 9}, {9, 3.75}});
    pen.line({{15, 3.75}, {15, 9}, {20.25, 9}});
    pen.line({{20.25, 15}, {15, 15}, {15, 20.25}});
    pen.line({{9, 20.25}, {9, 15}, {3.75, 15}});
}

void drawSpeaker(Pen& pen) {
    pen.outline({{2.75, 9}, {6.5, 9}, {12, 4.25}, {12, 19.75}, {6.5, 15}, {2.75, 15}}, 0.9);
}

void drawSound(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen pen(canvas, color, width);
    drawSpeaker(pen);
    pen.arc({11.5, 12}, 4.75, -pi / 4, pi / 4);
    pen.arc({11.5, 12}, 9, -pi / 4, pi / 4);
}

void drawMute(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen pen(canvas, color, width);
    drawSpeaker(pen);
    pen.line({{16, 9.25}, {21.5, 14.75}});
    pen.line({{21.5, 9.25}, {16, 14.75}});
}

void drawExternalLink(Canvas& canvas, const UIColor& color, CGFloat width) {
    Pen pen(canvas, color, width);
    pen.line({{14, 4}, {20, 4}, {20, 10}});
    pen.line({{19.5, 4.5}, {11.5, 12.5}});
    canvas.moveTo({10, 5.5});
    canvas.lineTo({6.5, 5.5});
    canvas.curveTo({5, 5.5}, {4, 6.5}, {4, 8});
    canvas.lineTo({4, 17.5});
    canvas.curveTo({4, 19}, {5, 20}, {6.5, 20});
    canvas.lineTo({16, 20});
    canvas.curveTo({17.5, 20}, {18.5, 19}, {18.5, 17.5});
    canvas.lineTo({18.5, 14});
    pen.stroke();
}

constexpr std::array icons = {
    VectorIcon("close", drawClose),
    VectorIcon("picture", drawPicture),
    VectorIcon("cube3d", drawCube),
    VectorIcon("video", drawVideo),
    VectorIcon("play", drawPlay),
    VectorIcon("pause", drawPause),
    VectorIcon("chevronLeft", drawChevronLeft),
    VectorIcon("chevronRight", drawChevronRight),
    VectorIcon("flare", drawFlare),
    VectorIcon("warningTriangle", drawWarning),
    VectorIcon("check", drawCheck),
    VectorIcon("emptyBox", drawEmptyBox),
    VectorIcon("coupon", drawCoupon),
    VectorIcon("cart", drawCart),
    VectorIcon("externalLink", drawExternalLink),
    VectorIcon("fullscreenEnter", drawFullscreenEnter),
    VectorIcon("fullscreenExit", drawFullscreenExit),
    VectorIcon("sound", drawSound),
    VectorIcon("mute", drawMute),
};

}  // namespace

const VectorIcon* VectorIcon::named(std::string_view name) {
    const auto found =
        std::find_if(icons.begin(), icons.end(), [name](const VectorIcon& icon) { return icon.name_ == name; });
    return found == icons.end() ? nullptr : &*found;
}

std::span<const VectorIcon> VectorIcon::all() {
    return icons;
}

void VectorIcon::draw(Canvas& canvas, const CGRect& rect, const UIColor& color) const {
    if (rect.isEmpty() || color.isClear()) return;
    const CGFloat side = std::min(rect.width(), rect.height());
    canvas.save();
    canvas.translate(rect.midX() - side / 2, rect.midY() - side / 2);
    canvas.scaleBy(side / gridSide, side / gridSide);
    // A large sign with lines as bold as a small one's would shout.
    const CGFloat boldness = std::min(1.0, std::pow(fullBoldnessSide / side, 0.4));
    painter_(canvas, color, lineWidth * boldness);
    canvas.restore();
}

}  // namespace flarebox
