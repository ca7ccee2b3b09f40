#include <UIKit/FrameTimeGraph.h>
#include <UIKit/UIWindow.h>

#include <algorithm>
#include <cstdio>

namespace flarebox {
namespace {

constexpr UIColor ground = UIColor::rgb(0x101418, 0.86F), wholeColor = UIColor::rgb(0x5B6472),
                  kitColor = UIColor::rgb(0x00E5FF), lateColor = UIColor::rgb(0xFF1744),
                  lineColor = UIColor::rgb(0xFFEA00, 0.8F);
constexpr double frameTime = 1.0 / 60;
/// Twice what a frame has.
constexpr double highest = 2 * frameTime;
constexpr CGFloat margin = 8, padding = 6, barWidth = 1.5, barsHeight = 60, textHeight = 16;
constexpr CGSize graphSize = {FrameTimeGraph::frameCount * barWidth + 2 * padding,
                              barsHeight + textHeight + 2 * padding};

}  // namespace

const ClassInfo& FrameTimeGraph::staticClass() {
    static const ClassInfo info("FrameTimeGraph", &UIView::staticClass(), createObject<FrameTimeGraph>);
    return info;
}

FrameTimeGraph::FrameTimeGraph() {
    setUserInteractionEnabled(false);
    setBackgroundColor(ground);
    layer().setCornerRadius(4);
}

void FrameTimeGraph::addFrame(double whole, double kit) {
    frames_[next_] = {whole, kit};
    next_ = (next_ + 1) % frameCount;
    place();
    setNeedsDisplay();
}

double FrameTimeGraph::longestFrame() const {
    return std::ranges::max(frames_, {}, &Frame::whole).whole;
}

double FrameTimeGraph::longestShareOfKit() const {
    return std::ranges::max(frames_, {}, &Frame::kit).kit;
}

void FrameTimeGraph::showInWindow(UIWindow& window) {
    window.addOverlay(*this);
    place();
}

void FrameTimeGraph::place() {
    if (!superview()) return;
    const CGSize screen = superview()->bounds().size;
    setFrame({{screen.width - graphSize.width - margin, screen.height - graphSize.height - margin}, graphSize});
}

void FrameTimeGraph::removeFromSuperview() {
    if (UIWindow* window = this->window()) window->removeOverlay(*this);
}

void FrameTimeGraph::drawRect(Canvas& canvas, const CGRect& bounds) {
    const CGFloat floor = bounds.maxY() - padding;
    const auto heightOf = [](double seconds) { return std::min(seconds / highest, 1.0) * barsHeight; };
    for (std::size_t i = 0; i < frameCount; ++i) {
        const Frame& frame = frames_[(next_ + i) % frameCount];
        const CGFloat x = bounds.minX() + padding + static_cast<CGFloat>(i) * barWidth;
        const auto bar = [&](double seconds, const UIColor& color) {
            const CGFloat height = heightOf(seconds);
            canvas.fillRoundedRect(CGRectMake(x, floor - height, barWidth, height), {}, color);
        };
        bar(frame.whole, frame.whole > 1.1 * frameTime ? lateColor : wholeColor);
        bar(frame.kit, kitColor);
    }
    const CGFloat line = floor - heightOf(frameTime);
    canvas.fillRoundedRect(CGRectMake(bounds.minX() + padding, line, bounds.width() - 2 * padding, 1), {}, lineColor);
    char text[96];
    std::snprintf(text, sizeof text, "kit %.1f of %.1f ms at most", longestShareOfKit() * 1000, longestFrame() * 1000);
    const TextStyle style{.font = UIFont::systemFontOfSize(11, UIFontWeight::Medium), .color = UIColor::whiteColor()};
    canvas.drawText(text, style, CGRectMake(bounds.minX() + padding, bounds.minY() + padding / 2, bounds.width(), 16));
}

}  // namespace flarebox
