#include <UIKit/UILabel.h>

#include <Foundation/NSNotificationCenter.h>
#include <UIKit/FontOpening.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace flarebox {
namespace {

constexpr CGFloat unlimited = std::numeric_limits<CGFloat>::infinity();
// Of the font size.
constexpr CGFloat iconSide = 1.1, iconGap = 0.4;
constexpr CGFloat fittingStep = 0.25;

CGRect insetBy(const CGRect& rect, const UIEdgeInsets& insets) {
    return CGRectMake(rect.minX() + insets.left, rect.minY() + insets.top,
                      std::max(0.0, rect.width() - insets.left - insets.right),
                      std::max(0.0, rect.height() - insets.top - insets.bottom));
}

CGFloat startOf(NSTextAlignment alignment, CGFloat room) {
    if (alignment == NSTextAlignment::Center) return room / 2;
    return alignment == NSTextAlignment::Right ? room : 0;
}

}  // namespace

const ClassInfo& UILabel::staticClass() {
    static const Action actions[] = {action<&UILabel::fontsDidOpen>("fontsDidOpen")};
    static const ClassInfo info("UILabel", &UIView::staticClass(), createObject<UILabel>, {.actions = actions});
    return info;
}

UILabel::UILabel() {
    setUserInteractionEnabled(false);
    followFonts();
}
UILabel::~UILabel() = default;

void UILabel::followFonts() {
    if (!fontsAreOpening() || std::exchange(followsFonts_, true)) return;
    NSNotificationCenter::defaultCenter().addObserver(*this, "fontsDidOpen", UIFontsDidOpenNotification);
}

template <class T>
void UILabel::change(T& field, const T& value, bool sizeChanged) {
    if (field == value) return;
    field = value;
    if (sizeChanged) fits_ = {};
    contentChanged(sizeChanged);
}

void UILabel::contentChanged(bool sizeChanged) {
    followFonts();
    if (sizeChanged) invalidateIntrinsicContentSize();
    setNeedsDisplay();
}

void UILabel::fontsDidOpen() {
    NSNotificationCenter::defaultCenter().removeObserver(*this, UIFontsDidOpenNotification, nullptr);
    fits_ = {};
    followsFonts_ = false;
    contentChanged(true);
}

void UILabel::setText(const NSString& text) {
    if (text_.text() == text.text() && static_cast<bool>(text_) == static_cast<bool>(text)) return;
    text_ = text;
    fits_ = {};
    contentChanged(true);
}

void UILabel::setFont(const UIFont& font) {
    change(style_.font, font, true);
}
void UILabel::setTextColor(const UIColor& color) {
    change(style_.color, color, false);
}
void UILabel::setTextAlignment(NSTextAlignment alignment) {
    change(style_.alignment, alignment, false);
}
void UILabel::setNumberOfLines(int lines) {
    change(style_.numberOfLines, std::max(0, lines), true);
}
void UILabel::setLineBreakMode(NSLineBreakMode mode) {
    change(style_.lineBreakMode, mode, true);
}
void UILabel::setAdjustsFontSizeToFitWidth(bool adjusts) {
    change(adjustsFontSize_, adjusts, false);
}
void UILabel::setMinimumScaleFactor(CGFloat factor) {
    change(minimumScale_, std::clamp(factor, 0.0, 1.0), false);
}
void UILabel::setPreferredMaxLayoutWidth(CGFloat width) {
    change(preferredMaxLayoutWidth_, std::max(0.0, width), true);
}
void UILabel::setContentInsets(const UIEdgeInsets& insets) {
    change(contentInsets_, insets, true);
}
void UILabel::setIcon(const VectorIcon* icon) {
    change(icon_, icon, true);
}

CGFloat UILabel::iconWidth() const {
    return icon_ ? style_.font.pointSize() * (iconSide + iconGap) : 0;
}

CGSize UILabel::sizeThatFits(CGFloat width) const {
    if (!drawsContent()) return {};
    for (const Fit& fit : fits_)
        if (fit.width == width) return fit.size;
    const CGFloat beside = iconWidth() + contentInsets_.left + contentInsets_.right;
    const CGSize text = measureText(text_.text(), style_, std::max(0.0, width - beside));
    const CGSize size = {text.width + beside, text.height + contentInsets_.top + contentInsets_.bottom};
    // Estimates do not last.
    if (!fontsAreOpening()) fits_ = {Fit{width, size}, fits_[0]};
    return size;
}

NSString UILabel::accessibilityLabel() const {
    const NSString label = UIView::accessibilityLabel();
    return label ? label : text_;
}

UIAccessibilityTraits UILabel::accessibilityTraits() const {
    return UIView::accessibilityTraits() | UIAccessibilityTraits::StaticText;
}

CGSize UILabel::intrinsicContentSize() const {
    const CGSize unbroken = sizeThatFits(unlimited);
    const CGFloat width = preferredMaxLayoutWidth_ > 0 ? preferredMaxLayoutWidth_ : bounds().width();
    const bool mayBreak = style_.numberOfLines != 1 && width > 0 && width < unbroken.width;
    answeredHeight_ = mayBreak ? sizeThatFits(width).height : unbroken.height;
    return {unbroken.width, answeredHeight_};
}

void UILabel::layoutSubviews() {
    UIView::layoutSubviews();
    // Only a changed height, so that layout comes to rest.
    if (style_.numberOfLines == 1 || answeredHeight_ < 0) return;
    const CGFloat answered = answeredHeight_;
    if (intrinsicContentSize().height != answered) invalidateIntrinsicContentSize();
}

TextStyle UILabel::fittedStyle(TextStyle style, CGFloat width) const {
    if (!adjustsFontSize_ || style.numberOfLines != 1 || !(width > 0)) return style;
    const CGFloat natural = measureText(text_.text(), style, unlimited).width;
    if (natural <= width) return style;
    const CGFloat size = style.font.pointSize();
    // In steps, because each size of a font takes memory of its own.
    const CGFloat fitting = std::floor(size * width / natural / fittingStep) * fittingStep;
    style.font = style.font.fontWithSize(std::max(size * minimumScale_, fitting));
    return style;
}

void UILabel::drawTextInRect(Canvas& canvas, const CGRect& rect, const UIColor& color, CGFloat fontScale) const {
    TextStyle style = style_;
    style.color = color;
    style.font = style.font.fontWithSize(style.font.pointSize() * fontScale);
    const CGFloat before = iconWidth() * fontScale;
    style = fittedStyle(style, rect.width() - before);
    const CGSize size = measureText(text_.text(), style, std::max(0.0, rect.width() - before));
    const CGFloat height = std::min(size.height, rect.height());
    const CGFloat top = rect.minY() + (rect.height() - height) / 2;
    if (!icon_) return canvas.drawText(text_.text(), style, CGRectMake(rect.minX(), top, rect.width(), height));

    // Sign and text are placed as one.
    const CGFloat room = std::max(0.0, rect.width() - before - size.width);
    const CGFloat left = rect.minX() + startOf(style.alignment, room);
    const CGFloat side = style_.font.pointSize() * iconSide * fontScale;
    icon_->draw(canvas, CGRectMake(left, rect.midY() - side / 2, side, side), color);
    canvas.drawText(text_.text(), style, CGRectMake(left + before, top, size.width, height));
}

void UILabel::drawRect(Canvas& canvas, const CGRect& bounds) {
    followFonts();
    drawTextInRect(canvas, insetBy(bounds, contentInsets_), style_.color);
}

}  // namespace flarebox
