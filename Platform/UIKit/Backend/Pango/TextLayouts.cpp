#include <UIKit/Backend/Pango/TextLayouts.h>

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace flarebox::text {
namespace {

// More than any label shows; breaking a megabyte into lines would hold the main thread for seconds.
constexpr std::size_t maximumLength = 4096;
constexpr std::size_t generationSize = 128;
// Faces at their sizes; each takes some 50 KB once it has been drawn.
constexpr std::size_t mostFonts = 128;
// Far beyond every screen, far below where the library's units overflow.
constexpr CGFloat maximumWidth = 100'000;
// Frames come out of sums of floating-point numbers; a text must fit into the very width that was measured.
constexpr CGFloat widthTolerance = 0.05;

constexpr gunichar lineSeparator = 0x2028;
constexpr std::string_view lineSeparatorText = "\u2028";

/// The beginning of the text, cut between two characters.
std::string_view shortened(std::string_view text) {
    if (text.size() <= maximumLength) return text;
    std::size_t end = maximumLength;
    while (end > maximumLength - 4 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return text.substr(0, end);
}

bool isLineEnd(gunichar c) {
    return c == '\n' || c == 0x85 || c == lineSeparator || c == 0x2029;
}

int libraryWidth(CGFloat width) {
    if (!(width < maximumWidth)) return std::isnan(width) ? 0 : -1;
    return pango_units_from_double(std::max(0.0, width) + widthTolerance);
}

/// No hyphens at the ends of lines, and no contextual alternates: the system font would turn "->" into an arrow.
void showTextAsItIs(PangoLayout& layout) {
    PangoAttrList* attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_insert_hyphens_new(FALSE));
    pango_attr_list_insert(attributes, pango_attr_font_features_new("calt=0"));
    pango_layout_set_attributes(&layout, attributes);
    pango_attr_list_unref(attributes);
}

/// A line that stands for all the rest shows the ends of the lines in it as signs; the text before the first of them,
/// which is to stand for the rest then. Nothing when there is none.
std::optional<std::string> withoutSwallowedLines(PangoLayout& layout, int lineCount) {
    const PangoLayoutLine* last = pango_layout_get_line_readonly(&layout, lineCount - 1);
    const std::string_view text = pango_layout_get_text(&layout);
    const auto start = static_cast<std::size_t>(last->start_index);
    const auto lineEnd = text.substr(start, static_cast<std::size_t>(last->length)).find(lineSeparatorText);
    if (lineEnd == std::string_view::npos) return std::nullopt;
    return std::string(text.substr(0, start + lineEnd)) + "…";
}

CGFloat widestLine(PangoLayout& layout, int lineCount) {
    int widest = 0;
    for (int i = 0; i < lineCount; ++i) {
        PangoRectangle logical;
        pango_layout_line_get_extents(pango_layout_get_line_readonly(&layout, i), nullptr, &logical);
        widest = std::max(widest, logical.width);
    }
    return pango_units_to_double(widest);
}

LayoutQuery queryFor(std::string_view text, const TextStyle& style, int numberOfLines, CGFloat width) {
    return {shortened(text), style.font, std::max(0, numberOfLines), libraryWidth(width),
            style.lineBreakMode == NSLineBreakMode::ByTruncatingTail};
}

}  // namespace

std::string cleanText(std::string_view text, bool severalLines) {
    std::string source(text);
    std::replace(source.begin(), source.end(), '\0', ' ');
    gchar* valid = g_utf8_make_valid(source.data(), static_cast<gssize>(source.size()));
    std::string clean;
    clean.reserve(source.size());
    for (const gchar* at = valid; *at; at = g_utf8_next_char(at)) {
        gunichar c = g_utf8_get_char(at);
        if (c == '\r') {
            if (at[1] == '\n') continue;
            c = '\n';
        }
        // A line separator breaks the line within its paragraph, so that a limit of lines counts over the whole text.
        if (isLineEnd(c))
            c = severalLines ? lineSeparator : ' ';
        else if (g_unichar_iscntrl(c))
            c = ' ';
        char bytes[6];
        clean.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(c, bytes)));
    }
    g_free(valid);
    while (clean.ends_with(lineSeparatorText)) clean.resize(clean.size() - lineSeparatorText.size());
    return clean;
}

std::size_t LayoutKeyHash::operator()(const LayoutQuery& query) const noexcept {
    std::size_t hash = std::hash<std::string_view>()(query.text);
    const auto mix = [&hash](std::size_t part) { hash = hash * 1'000'003 ^ part; };
    mix(std::hash<std::string_view>()(query.family));
    mix(std::hash<double>()(query.pointSize));
    mix(static_cast<std::size_t>(query.weight));
    mix(static_cast<std::size_t>(query.width));
    mix(static_cast<std::size_t>(query.numberOfLines) * 2 + query.truncates);
    return hash;
}

const TextLayout& TextLayouts::find(std::string_view text, const TextStyle& style, int numberOfLines, CGFloat width) {
    const LayoutQuery query = queryFor(text, style, numberOfLines, width);
    if (const auto found = recent_.find(query); found != recent_.end()) return found->second;
    if (recent_.size() >= generationSize) {
        older_ = std::move(recent_);
        recent_.clear();
    }
    if (const auto old = older_.find(query); old != older_.end())
        return recent_.insert(older_.extract(old)).position->second;
    LayoutKey key{std::string(query.text), style.font, query.numberOfLines, query.width, query.truncates};
    TextLayout built = build(key);
    return recent_.emplace(std::move(key), std::move(built)).first->second;
}

LineMetrics TextLayouts::lineMetrics(const UIFont& font) {
    const LayoutQuery query({}, font, 0, -1, false);
    if (const auto found = metrics_.find(query); found != metrics_.end()) return found->second;
    if (metrics_.size() >= mostFonts) {
        metrics_.clear();
        fonts_.closeUnused();
    }
    return metrics_.emplace(LayoutKey{{}, font}, fonts_.lineMetrics(font)).first->second;
}

void TextLayouts::addNewFontFiles() {
    recent_.clear();
    older_.clear();
    metrics_.clear();
    fonts_.addNewFiles();
}

bool TextLayouts::opensNoFont(std::string_view text, const TextStyle& style, CGFloat width) const {
    const auto isBasicLatin = [](char c) { return (c & 0x80) == 0; };
    if (!metrics_.contains(LayoutQuery({}, style.font, 0, -1, false))) return false;
    if (std::ranges::all_of(text, isBasicLatin)) return true;
    // Other letters may be another font's.
    const LayoutQuery query = queryFor(text, style, style.numberOfLines, width);
    return recent_.contains(query) || older_.contains(query);
}

TextLayout TextLayouts::build(const LayoutKey& key) {
    ++built_;
    TextLayout result;
    result.metrics = lineMetrics(key.font);
    result.lineCount = 1;
    if (!fonts_.context()) return result;

    result.layout.reset(pango_layout_new(fonts_.context()));
    PangoLayout& layout = *result.layout;
    const std::string text = cleanText(key.text, key.numberOfLines != 1);
    pango_layout_set_text(&layout, text.data(), static_cast<int>(text.size()));
    PangoFontDescription* description = PrivateFonts::newDescription(key.font);
    pango_layout_set_font_description(&layout, description);
    pango_font_description_free(description);
    showTextAsItIs(layout);
    pango_layout_set_wrap(&layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_width(&layout, key.width);
    if (key.truncates && key.numberOfLines > 0) {
        pango_layout_set_ellipsize(&layout, PANGO_ELLIPSIZE_END);
        pango_layout_set_height(&layout, -key.numberOfLines);
    }
    const auto shownLines = [&] {
        const int lines = pango_layout_get_line_count(&layout);
        return key.numberOfLines > 0 ? std::min(lines, key.numberOfLines) : lines;
    };
    if (const auto shorter = withoutSwallowedLines(layout, shownLines()))
        pango_layout_set_text(&layout, shorter->data(), static_cast<int>(shorter->size()));
    result.lineCount = shownLines();
    result.width = widestLine(layout, result.lineCount);
    return result;
}

}  // namespace flarebox::text
