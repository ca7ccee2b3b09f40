#pragma once

#include <UIKit/Backend/Pango/PrivateFonts.h>
#include <UIKit/Canvas.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace flarebox::text {

/// A text broken into lines.
struct TextLayout {
    /// Null where there are no fonts.
    GReference<PangoLayout> layout;
    LineMetrics metrics;
    /// Lines to show; the layout may have more.
    int lineCount = 0;
    /// Of the widest line to show, in points.
    CGFloat width = 0;
};

/// What the breaking of a text depends on. Colour and alignment are not among it.
struct LayoutKey {
    std::string text;
    UIFont font;
    /// 0: no limit.
    int numberOfLines = 0;
    /// In units of the library; -1 for no limit.
    int width = -1;
    bool truncates = false;
};

/// A key that only looks at its text, for texts are asked for far more often than they are remembered.
struct LayoutQuery {
    std::string_view text, family;
    CGFloat pointSize;
    UIFontWeight weight;
    int numberOfLines, width;
    bool truncates;

    LayoutQuery(std::string_view queriedText, const UIFont& font, int lines, int unitsWide, bool isTruncated)
        : text(queriedText),
          family(font.family()),
          pointSize(font.pointSize()),
          weight(font.weight()),
          numberOfLines(lines),
          width(unitsWide),
          truncates(isTruncated) {}
    LayoutQuery(const LayoutKey& key) : LayoutQuery(key.text, key.font, key.numberOfLines, key.width, key.truncates) {}
    friend bool operator==(const LayoutQuery&, const LayoutQuery&) = default;
};
struct LayoutKeyHash {
    using is_transparent = void;
    std::size_t operator()(const LayoutQuery& query) const noexcept;
};
struct LayoutKeyEqual {
    using is_transparent = void;
    bool operator()(const LayoutQuery& one, const LayoutQuery& other) const { return one == other; }
};

/// Breaks texts into lines and remembers the last results, for a label asks for its size and is drawn far more often
/// than its text changes. Not thread-safe.
class TextLayouts {
public:
    /// `numberOfLines` overrules that of the style. The layout stays valid until the next call.
    const TextLayout& find(std::string_view text, const TextStyle& style, int numberOfLines, CGFloat width);
    LineMetrics lineMetrics(const UIFont& font);
    /// Whether finding this text opens no font.
    bool opensNoFont(std::string_view text, const TextStyle& style, CGFloat width) const;
    /// Texts are laid out anew, with the font files added since.
    void addNewFontFiles();
    /// How many texts were not remembered.
    std::uint64_t builtCount() const { return built_; }

private:
    using Layouts = std::unordered_map<LayoutKey, TextLayout, LayoutKeyHash, LayoutKeyEqual>;
    TextLayout build(const LayoutKey& key);

    PrivateFonts fonts_;
    // Two generations: what is not asked for while the recent one fills up is forgotten.
    Layouts recent_, older_;
    std::unordered_map<LayoutKey, LineMetrics, LayoutKeyHash, LayoutKeyEqual> metrics_;
    std::uint64_t built_ = 0;
};

/// The text as the library can take it: valid UTF-8 (what is not becomes U+FFFD), without control characters; line ends
/// stay line ends in a text of several lines and become blanks otherwise.
std::string cleanText(std::string_view text, bool severalLines);

}  // namespace flarebox::text
