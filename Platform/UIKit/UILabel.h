#pragma once

#include <Foundation/Values.h>
#include <UIKit/UIView.h>
#include <UIKit/VectorIcon.h>

#include <array>

namespace flarebox {

/// Shows a text, in the middle of its height. Main thread only.
///
/// Set by layout files: `text`, `font`, `textColor`, `textAlignment`, `numberOfLines`, `lineBreakMode`,
/// `adjustsFontSizeToFitWidth`, `minimumScaleFactor`, `contentInsets`, `icon`.
class UILabel : public UIView {
    FLAREBOX_CLASS(UILabel)
public:
    UILabel();
    ~UILabel() override;

    /// Absent when there is none, which looks like an empty text.
    const NSString& text() const { return text_; }
    void setText(const NSString& text);
    const UIFont& font() const { return style_.font; }
    void setFont(const UIFont& font);
    /// White unless set.
    const UIColor& textColor() const { return style_.color; }
    void setTextColor(const UIColor& color);
    /// Natural unless set: at the side where the text's script begins.
    NSTextAlignment textAlignment() const { return style_.alignment; }
    void setTextAlignment(NSTextAlignment alignment);
    /// 1 unless set; 0 for as many as the height has room for.
    int numberOfLines() const { return style_.numberOfLines; }
    void setNumberOfLines(int lines);
    /// ByTruncatingTail unless set.
    NSLineBreakMode lineBreakMode() const { return style_.lineBreakMode; }
    void setLineBreakMode(NSLineBreakMode mode);
    /// Whether a text of one line that is too wide is drawn smaller, down to the minimum scale (0 to 1, 0.5 unless
    /// set).
    bool adjustsFontSizeToFitWidth() const { return adjustsFontSize_; }
    void setAdjustsFontSizeToFitWidth(bool adjusts);
    CGFloat minimumScaleFactor() const { return minimumScale_; }
    void setMinimumScaleFactor(CGFloat factor);
    /// Width in points for which the intrinsic height of a text of several lines is asked; 0, the default, for the
    /// label's own width.
    CGFloat preferredMaxLayoutWidth() const { return preferredMaxLayoutWidth_; }
    void setPreferredMaxLayoutWidth(CGFloat width);
    /// Room in points between the label's edges and its text.
    const UIEdgeInsets& contentInsets() const { return contentInsets_; }
    void setContentInsets(const UIEdgeInsets& insets);
    /// A sign before the text, in the text's colour and size; null for none.
    const VectorIcon* icon() const { return icon_; }
    void setIcon(const VectorIcon* icon);

    /// The text, unless another was set.
    NSString accessibilityLabel() const override;
    UIAccessibilityTraits accessibilityTraits() const override;

    /// As wide as the text without line breaks (but those within it), as high as it is when broken at the label's
    /// width.
    CGSize intrinsicContentSize() const override;
    void layoutSubviews() override;
    void drawRect(Canvas& canvas, const CGRect& bounds) override;
    bool drawsContent() const override { return icon_ || !text_.text().empty(); }

    /// Draws the text as the label would, in another place and colour; the font is `fontScale` times its size.
    void drawTextInRect(Canvas& canvas, const CGRect& rect, const UIColor& color, CGFloat fontScale = 1) const;
    /// The size that the text takes when it may be that wide.
    CGSize sizeThatFits(CGFloat width) const;

protected:
    /// After text, font or anything else that is drawn changed; `sizeChanged` when it may take another room.
    virtual void contentChanged(bool sizeChanged);
    bool isElementByNature() const override { return !accessibilityLabel().text().empty(); }

private:
    template <class T>
    void change(T& field, const T& value, bool sizeChanged);
    void followFonts();
    void fontsDidOpen();
    CGFloat iconWidth() const;
    TextStyle fittedStyle(TextStyle style, CGFloat width) const;

    NSString text_;
    TextStyle style_;
    const VectorIcon* icon_ = nullptr;
    UIEdgeInsets contentInsets_;
    CGFloat minimumScale_ = 0.5, preferredMaxLayoutWidth_ = 0;
    /// The intrinsic height last answered, to notice when another width makes it wrong.
    mutable CGFloat answeredHeight_ = -1;
    /// The last sizes answered, for layout asks for the same ones again and again; of widths below 0 where there is
    /// none.
    struct Fit {
        CGFloat width = -1;
        CGSize size;
    };
    mutable std::array<Fit, 2> fits_;
    bool adjustsFontSize_ = false, followsFonts_ = false;
};

}  // namespace flarebox
