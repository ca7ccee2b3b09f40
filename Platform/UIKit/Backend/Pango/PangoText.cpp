#include <UIKit/Backend/Pango/PangoText.h>

#include <Foundation/Immortal.h>
#include <UIKit/Backend/Pango/TextLayouts.h>
#include <UIKit/BitmapCanvas.h>
#include <UIKit/FontOpening.h>

#include <pango/pangocairo.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace flarebox {
namespace text {
namespace {

/// Texts are the main thread's, but fonts are opened on another one, in between.
struct SharedLayouts {
    std::mutex mutex;
    TextLayouts layouts;
};
std::atomic<bool> isInUse = false;

SharedLayouts& shared() {
    // First: who adds a font file after this waits for the fonts, and who did before is heard when they are made.
    isInUse.store(true);
    static detail::Immortal<SharedLayouts> instance;
    return *instance;
}

/// What was asked for while the fonts were being opened, for that thread to lay out as well.
struct AwaitedTexts {
    struct Entry {
        std::string text;
        TextStyle style;
        CGFloat width;
    };
    static constexpr std::size_t most = 256;

    void add(std::string_view text, const TextStyle& style, CGFloat width) {
        const std::lock_guard lock(mutex);
        if (entries.size() < most) entries.push_back({std::string(text), style, width});
    }
    std::vector<Entry> take() {
        const std::lock_guard lock(mutex);
        return std::exchange(entries, {});
    }

    std::mutex mutex;
    std::vector<Entry> entries;
};
AwaitedTexts& awaited() {
    static detail::Immortal<AwaitedTexts> texts;
    return *texts;
}

/// What a text of usual letters takes in the system font.
CGSize estimatedSize(std::string_view text, const TextStyle& style, CGFloat width) {
    constexpr CGFloat letterWidth = 0.55, lineHeight = 1.21;
    const CGFloat size = style.font.pointSize();
    const auto letters = std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; });
    const CGFloat natural = std::ceil(static_cast<CGFloat>(letters) * letterWidth * size);
    CGFloat lines = width > 0 ? std::max(1.0, std::ceil(natural / width)) : 1;
    if (style.numberOfLines > 0) lines = std::min<CGFloat>(lines, style.numberOfLines);
    return {width > 0 ? std::min(natural, width) : natural, std::ceil(lines * lineHeight * size)};
}

CGSize sizeOf(std::string_view text, const TextStyle& style, CGFloat width) {
    const std::lock_guard lock(shared().mutex);
    TextLayouts& layouts = shared().layouts;
    if (text.empty()) return {0, std::ceil(layouts.lineMetrics(style.font).height)};
    const TextLayout& layout = layouts.find(text, style, style.numberOfLines, width);
    // Whole points: a frame of that size, rounded to pixels, still has room for the text.
    const CGFloat widest = std::ceil(layout.width - 0.05);
    return {width > 0 ? std::min(widest, width) : widest, std::ceil(layout.lineCount * layout.metrics.height)};
}

/// As many lines as the style allows and the height has room for; at least one.
int linesInHeight(const TextStyle& style, const LineMetrics& metrics, CGFloat height) {
    const int fitting = std::max(1, static_cast<int>(std::min(height / metrics.height + 0.02, 10'000.0)));
    return style.numberOfLines > 0 ? std::min(style.numberOfLines, fitting) : fitting;
}

CGFloat lineStart(NSTextAlignment alignment, bool rightToLeft, CGFloat room) {
    switch (alignment) {
        case NSTextAlignment::Left:
            return 0;
        case NSTextAlignment::Center:
            return room / 2;
        case NSTextAlignment::Right:
            return room;
        case NSTextAlignment::Natural:
            return rightToLeft ? room : 0;
    }
    return 0;
}

/// Letters stand on whole pixels: their feet would be grey otherwise.
CGFloat snappedToPixel(cairo_t& cairo, CGFloat y) {
    cairo_matrix_t matrix;
    cairo_get_matrix(&cairo, &matrix);
    if (matrix.xy != 0 || matrix.yx != 0 || matrix.yy == 0) return y;
    return (std::round(y * matrix.yy + matrix.y0) - matrix.y0) / matrix.yy;
}

void drawLines(cairo_t& cairo, const TextLayout& text, NSTextAlignment alignment, const CGRect& rect) {
    for (int i = 0; i < text.lineCount; ++i) {
        PangoLayoutLine* line = pango_layout_get_line_readonly(text.layout.get(), i);
        PangoRectangle logical;
        pango_layout_line_get_extents(line, nullptr, &logical);
        const bool rightToLeft = pango_layout_line_get_resolved_direction(line) == PANGO_DIRECTION_RTL;
        const CGFloat room = std::max(0.0, rect.width() - pango_units_to_double(logical.width));
        const CGFloat baseline = rect.minY() + text.metrics.baseline + i * text.metrics.height;
        cairo_move_to(&cairo, rect.minX() + lineStart(alignment, rightToLeft, room), snappedToPixel(cairo, baseline));
        pango_cairo_show_layout_line(&cairo, line);
    }
}

bool canBeLaidOut(std::string_view text, const TextStyle& style, CGFloat width) {
    if (fontsAreOpening()) return false;
    if (isInUse.load(std::memory_order_relaxed)) {
        const std::lock_guard lock(shared().mutex);
        if (shared().layouts.opensNoFont(text, style, width)) return true;
    }
    return anotherFontCanBeOpened();
}

}  // namespace

void draw(cairo_t& cairo, std::string_view text, const TextStyle& style, const CGRect& rect) {
    if (text.empty() || rect.isEmpty() || style.color.isClear()) return;
    const std::lock_guard lock(shared().mutex);
    TextLayouts& layouts = shared().layouts;
    const int lines = linesInHeight(style, layouts.lineMetrics(style.font), rect.height());
    const TextLayout& layout = layouts.find(text, style, lines, rect.width());
    if (!layout.layout) return;

    cairo_save(&cairo);
    cairo_rectangle(&cairo, rect.minX(), rect.minY(), rect.width(), rect.height());
    cairo_clip(&cairo);
    cairo_set_source_rgba(&cairo, style.color.red, style.color.green, style.color.blue, style.color.alpha);
    drawLines(cairo, layout, style.alignment, rect);
    cairo_restore(&cairo);
}

}  // namespace text

CGSize measureText(std::string_view text, const TextStyle& style, CGFloat width) {
    if (text::canBeLaidOut(text, style, width)) return text::sizeOf(text, style, width);
    text::awaited().add(text, style, width);
    return text::estimatedSize(text, style, width);
}

std::uint64_t laidOutTextCount() {
    const std::lock_guard lock(text::shared().mutex);
    return text::shared().layouts.builtCount();
}

void openUsualFonts(const std::atomic<bool>& stops) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 64, 32);
    cairo_t* cairo = cairo_create(surface);
    using enum UIFontWeight;
    // Each weight is a file of its own.
    for (const UIFontWeight weight : {Regular, Semibold, Medium, Bold}) {
        if (stops) break;
        text::draw(*cairo, "Ag…", {.font = UIFont::systemFontOfSize(16, weight)}, CGRectMake(0, 0, 64, 32));
    }
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
    // Once: whoever asks again and again would keep this from ending.
    for (const auto& [text, style, width] : text::awaited().take()) {
        if (stops) break;
        text::sizeOf(text, style, width);
    }
}

bool fontsAreInUse() {
    return text::isInUse.load();
}

std::string addFontFile(const std::string& path) {
    const std::string family = text::addFontFile(path);
    if (family.empty() || !fontsAreInUse()) return family;
    const std::lock_guard lock(text::shared().mutex);
    text::shared().layouts.addNewFontFiles();
    return family;
}

}  // namespace flarebox
