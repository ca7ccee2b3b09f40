#pragma once

#include <UIKit/Geometry.h>
#include <UIKit/UIFont.h>

#include <string_view>

namespace flarebox {

class UIImage;

enum class NSTextAlignment : std::uint8_t { Left, Center, Right, Natural };
enum class NSLineBreakMode : std::uint8_t { ByWordWrapping, ByTruncatingTail };

struct TextStyle {
    UIFont font;
    UIColor color = UIColor::whiteColor();
    NSTextAlignment alignment = NSTextAlignment::Natural;
    NSLineBreakMode lineBreakMode = NSLineBreakMode::ByTruncatingTail;
    /// 0: as many as fit the height.
    int numberOfLines = 1;
    friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

/// The space that a text takes when it may be `width` points wide at most. Lines break between words, within a word
/// where one word alone is wider. An empty text is one line high and 0 wide.
CGSize measureText(std::string_view text, const TextStyle& style, CGFloat width);

struct CornerRadii {
    CGFloat topLeft = 0, topRight = 0, bottomRight = 0, bottomLeft = 0;
    static constexpr CornerRadii all(CGFloat radius) { return {radius, radius, radius, radius}; }
    friend bool operator==(const CornerRadii&, const CornerRadii&) = default;
};

/// What a view draws on. Coordinates are points of the view, origin at its upper left corner; the canvas knows the
/// scale, so shapes and text are sharp at every scale. Main thread.
class Canvas {
public:
    virtual ~Canvas() = default;

    /// Pixels per point.
    virtual CGFloat scale() const = 0;

    virtual void save() = 0;
    virtual void restore() = 0;
    virtual void translate(CGFloat dx, CGFloat dy) = 0;
    virtual void scaleBy(CGFloat sx, CGFloat sy) = 0;
    virtual void rotate(CGFloat radians) = 0;
    virtual void clipRoundedRect(const CGRect& rect, const CornerRadii& radii) = 0;

    virtual void fillRoundedRect(const CGRect& rect, const CornerRadii& radii, const UIColor& color) = 0;
    /// The line lies inside the rectangle.
    virtual void strokeRoundedRect(const CGRect& rect, const CornerRadii& radii, CGFloat lineWidth,
                                   const UIColor& color) = 0;
    /// From `start` at the rectangle's upper or left edge to `end` at the opposite one.
    virtual void fillGradient(const CGRect& rect, const UIColor& start, const UIColor& end, bool horizontal) = 0;

    virtual void moveTo(CGPoint point) = 0;
    virtual void lineTo(CGPoint point) = 0;
    virtual void curveTo(CGPoint control1, CGPoint control2, CGPoint end) = 0;
    /// Clockwise from `startAngle` to `endAngle`, radians, 0 at the right.
    virtual void arc(CGPoint center, CGFloat radius, CGFloat startAngle, CGFloat endAngle) = 0;
    virtual void closePath() = 0;
    /// Both use up the path. Lines have round caps and joins.
    virtual void fillPath(const UIColor& color) = 0;
    virtual void strokePath(const UIColor& color, CGFloat lineWidth) = 0;

    /// Scales the picture into the rectangle with good filtering.
    virtual void drawImage(const UIImage& image, const CGRect& rect) = 0;
    /// Lays the text out within the rectangle from its top; nothing is drawn outside it.
    virtual void drawText(std::string_view text, const TextStyle& style, const CGRect& rect) = 0;
};

}  // namespace flarebox
