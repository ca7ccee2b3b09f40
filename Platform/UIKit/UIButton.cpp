#include <UIKit/UIButton.h>

#include <algorithm>
#include <limits>
#include <numbers>

namespace flarebox {
namespace {

constexpr float pressedShade = 0.92F;
constexpr CGFloat pressedScale = 0.98;
constexpr UIColor hoverGlow = UIColor::whiteColor().withAlpha(0.06F);
constexpr CGFloat barWidth = 2;

// The first that is set counts.
constexpr std::array statesByRank = {UIControlState::Disabled, UIControlState::Highlighted, UIControlState::Selected};

/// The largest rectangle of that shape in the middle of the other.
CGRect fitted(CGSize shape, const CGRect& rect) {
    if (shape.width <= 0 || shape.height <= 0) return rect;
    const CGFloat scale = std::min(rect.width() / shape.width, rect.height() / shape.height);
    const CGSize size{shape.width * scale, shape.height * scale};
    return {{rect.midX() - size.width / 2, rect.midY() - size.height / 2}, size};
}

}  // namespace

const ClassInfo& UIButton::staticClass() {
    static const ClassInfo info("UIButton", &UIControl::staticClass(), createObject<UIButton>);
    return info;
}

/// Not part of the tree: the button draws it, and is told when it changes.
class UIButton::TitleLabel : public UILabel {
public:
    explicit TitleLabel(UIButton& button) : button_(button) {}

protected:
    void contentChanged(bool sizeChanged) override {
        if (sizeChanged) button_.invalidateIntrinsicContentSize();
        button_.setNeedsDisplay();
    }

private:
    UIButton& button_;
};

template <class T>
std::size_t UIButton::PerState<T>::indexOf(UIControlState state) {
    for (std::size_t rank = 0; rank < statesByRank.size(); ++rank)
        if (contains(state, statesByRank[rank])) return rank + 1;
    return 0;
}

template <class T>
const std::optional<T>& UIButton::PerState<T>::own(UIControlState state) const {
    for (std::size_t rank = 0; rank < statesByRank.size(); ++rank)
        if (contains(state, statesByRank[rank]) && values_[rank + 1]) return values_[rank + 1];
    static const std::optional<T> none;
    return state == UIControlState::Normal ? values_[0] : none;
}

template <class T>
const std::optional<T>& UIButton::PerState<T>::get(UIControlState state) const {
    const std::optional<T>& value = own(state);
    return value ? value : values_[0];
}

UIButton::UIButton() : titleLabel_(make<TitleLabel>(*this)) {
    titleLabel_->setFont(UIFont::systemFontOfSize(15));
    titleLabel_->setTextAlignment(NSTextAlignment::Center);
}
UIButton::~UIButton() = default;

NSString UIButton::titleForState(UIControlState state) const {
    return titles_.get(state).value_or(NSString());
}

void UIButton::setTitle(const NSString& title, UIControlState state) {
    titles_.set(state, title);
    showState();
}

UIColor UIButton::titleColorForState(UIControlState state) const {
    if (state != UIControlState::Normal) {
        if (const auto& own = titleColors_.own(state)) return *own;
        if (const auto& tint = tintColors_.own(state)) return *tint;
    }
    return titleColors_.get(UIControlState::Normal).value_or(UIColor::whiteColor());
}

void UIButton::setTitleColor(const UIColor& color, UIControlState state) {
    if (titleColors_.own(state) == color) return;
    titleColors_.set(state, color);
    setNeedsDisplay();
}

UIColor UIButton::tintColorForState(UIControlState state) const {
    return tintColors_.get(state).value_or(tintColor());
}

void UIButton::setTintColor(const UIColor& color, UIControlState state) {
    if (state == UIControlState::Normal) return setTintColor(color);
    if (tintColors_.own(state) == color) return;
    tintColors_.set(state, color);
    setNeedsDisplay();
}

const VectorIcon* UIButton::iconForState(UIControlState state) const {
    return icons_.get(state).value_or(nullptr);
}

void UIButton::setIcon(const VectorIcon* icon, UIControlState state) {
    icons_.set(state, icon);
    showState();
}

Ref<UIImage> UIButton::imageForState(UIControlState state) const {
    return images_.get(state).value_or(nullptr);
}

void UIButton::setImage(Ref<UIImage> image, UIControlState state) {
    images_.set(state, std::move(image));
    showState();
}

UIColor UIButton::backgroundColorForState(UIControlState state) const {
    return backgroundColors_.get(state).value_or(UIColor::clearColor());
}

void UIButton::setBackgroundColor(const UIColor& color, UIControlState state) {
    if (backgroundColors_.own(state) == color) return;
    backgroundColors_.set(state, color);
    setNeedsDisplay();
}

NSString UIButton::accessibilityLabel() const {
    if (const auto& own = labels_.own(state())) return *own;
    const NSString label = UIControl::accessibilityLabel();
    return label ? label : currentTitle();
}

void UIButton::setAccessibilityLabel(const NSString& label, UIControlState state) {
    if (state == UIControlState::Normal) return setAccessibilityLabel(label);
    labels_.set(state, label);
}

NSString UIButton::accessibilityLabelForState(UIControlState state) const {
    if (state == UIControlState::Normal) return UIControl::accessibilityLabel();
    return labels_.own(state).value_or(NSString());
}

UIAccessibilityTraits UIButton::accessibilityTraits() const {
    // One that has a name of its own for being selected does something else then.
    const bool changesName = bool(labels_.own(UIControlState::Selected));
    const UIAccessibilityTraits traits = UIControl::accessibilityTraits() | UIAccessibilityTraits::Button;
    return changesName ? without(traits, UIAccessibilityTraits::Selected) : traits;
}

template <class T>
void UIButton::change(T& field, const T& value) {
    if (field == value) return;
    field = value;
    invalidateIntrinsicContentSize();
    setNeedsDisplay();
}

void UIButton::setIconPlacement(UIButtonIconPlacement placement) {
    change(iconPlacement_, placement);
}
void UIButton::setIconSize(CGFloat size) {
    change(iconSize_, std::max(0.0, size));
}
void UIButton::setIconSpacing(CGFloat spacing) {
    change(iconSpacing_, spacing);
}
void UIButton::setTitleRunsDownwards(bool runsDownwards) {
    change(titleRunsDownwards_, runsDownwards);
}
void UIButton::setContentInsets(const UIEdgeInsets& insets) {
    change(contentInsets_, insets);
}
void UIButton::setDesignHeight(CGFloat height) {
    change(designHeight_, std::max(0.0, height));
}
void UIButton::setSelectionBarEdge(UIButtonBarEdge edge) {
    change(selectionBarEdge_, edge);
}

void UIButton::stateChanged() {
    showState();
}

void UIButton::showState() {
    titleLabel_->setText(currentTitle());
    invalidateIntrinsicContentSize();
    setNeedsDisplay();
}

CGSize UIButton::titleExtent() const {
    const CGSize title = titleLabel_->sizeThatFits(std::numeric_limits<CGFloat>::infinity());
    return titleRunsDownwards_ ? CGSize{title.height, title.width} : title;
}

CGSize UIButton::intrinsicContentSize() const {
    const CGSize title = titleExtent();
    const CGFloat icon = hasIcon() ? iconSize_ : 0;
    const CGFloat spacing = icon > 0 && titleLabel_->drawsContent() ? iconSpacing_ : 0;
    const bool above = iconPlacement_ == UIButtonIconPlacement::Above;
    const CGFloat width = above ? std::max(icon, title.width) : icon + spacing + title.width;
    const CGFloat height = above ? icon + spacing + title.height : std::max(icon, title.height);
    return {width + contentInsets_.left + contentInsets_.right, height + contentInsets_.top + contentInsets_.bottom};
}

UIColor UIButton::shaded(const UIColor& color) const {
    if (!isHighlighted()) return color;
    return {color.red * pressedShade, color.green * pressedShade, color.blue * pressedShade, color.alpha};
}

CGFloat UIButton::contentScale(const CGRect& bounds) const {
    return designHeight_ > 0 ? bounds.height() / designHeight_ : 1;
}

void UIButton::drawRect(Canvas& canvas, const CGRect& bounds) {
    canvas.save();
    drawBackground(canvas, bounds);
    if (isHighlighted()) {
        canvas.translate(bounds.midX(), bounds.midY());
        canvas.scaleBy(pressedScale, pressedScale);
        canvas.translate(-bounds.midX(), -bounds.midY());
    }
    drawContent(canvas, bounds);
    canvas.restore();
    drawBar(canvas, bounds);
}

void UIButton::drawBackground(Canvas& canvas, const CGRect& bounds) const {
    const UIColor background = backgroundColorForState(state());
    // A filled button shrinks as a whole while pressed; one with an outline keeps to it.
    const bool shrinks = isHighlighted() && layer().borderWidth() <= 0 && backgroundColor().isClear();
    const CGFloat dx = shrinks ? bounds.width() * (1 - pressedScale) / 2 : 0;
    const CGFloat dy = shrinks ? bounds.height() * (1 - pressedScale) / 2 : 0;
    const CGRect area = bounds.inset(dx, dy);
    const CornerRadii& radii = layer().cornerRadii();
    canvas.fillRoundedRect(area, radii, shaded(background));
    const bool shadesOwnBackground = isHighlighted() && background.alpha < 1 && !backgroundColor().isClear();
    if (shadesOwnBackground)
        canvas.fillRoundedRect(area, radii, UIColor::blackColor().withAlpha(1 - pressedShade));
    else if (isHovered() && isEnabled() && !isHighlighted())
        canvas.fillRoundedRect(area, radii, hoverGlow);
}

void UIButton::drawContent(Canvas& canvas, const CGRect& bounds) const {
    const CGFloat scale = contentScale(bounds);
    const CGRect area =
        CGRectMake(bounds.minX() + contentInsets_.left * scale, bounds.minY() + contentInsets_.top * scale,
                   bounds.width() - (contentInsets_.left + contentInsets_.right) * scale,
                   bounds.height() - (contentInsets_.top + contentInsets_.bottom) * scale);
    const bool hasTitle = titleLabel_->drawsContent();
    if (!hasIcon()) return drawTitle(canvas, area, scale);

    const CGFloat side = std::min({iconSize_ * scale, area.width(), area.height()});
    const CGRect icon = CGRectMake(area.midX() - side / 2, area.midY() - side / 2, side, side);
    if (!hasTitle) return drawIcon(canvas, icon);

    const CGFloat spacing = iconSpacing_ * scale;
    const CGSize title{titleExtent().width * scale, titleExtent().height * scale};
    if (iconPlacement_ == UIButtonIconPlacement::Above) {
        const CGFloat height = std::min(title.height, std::max(0.0, area.height() - side - spacing));
        const CGFloat top = area.midY() - (side + spacing + height) / 2;
        drawIcon(canvas, CGRectMake(icon.minX(), top, side, side));
        return drawTitle(canvas, CGRectMake(area.minX(), top + side + spacing, area.width(), height), scale);
    }
    const CGFloat width = std::min(title.width, std::max(0.0, area.width() - side - spacing));
    const CGFloat left = area.midX() - (side + spacing + width) / 2;
    drawIcon(canvas, CGRectMake(left, icon.minY(), side, side));
    drawTitle(canvas, CGRectMake(left + side + spacing, area.minY(), width, area.height()), scale);
}

void UIButton::drawTitle(Canvas& canvas, const CGRect& rect, CGFloat scale) const {
    const UIColor color = shaded(titleColorForState(state()));
    if (!titleRunsDownwards_) return titleLabel_->drawTextInRect(canvas, rect, color, scale);
    canvas.save();
    canvas.translate(rect.midX(), rect.midY());
    canvas.rotate(std::numbers::pi / 2);
    const CGRect turned = CGRectMake(-rect.height() / 2, -rect.width() / 2, rect.height(), rect.width());
    titleLabel_->drawTextInRect(canvas, turned, color, scale);
    canvas.restore();
}

void UIButton::drawIcon(Canvas& canvas, const CGRect& rect) const {
    if (const auto image = imageForState(state()))
        canvas.drawImage(*image, fitted(image->size(), rect));
    else if (const VectorIcon* icon = iconForState(state()))
        icon->draw(canvas, rect, shaded(tintColorForState(state())));
}

void UIButton::drawBar(Canvas& canvas, const CGRect& bounds) const {
    if (!isSelected() || selectionBarEdge_ == UIButtonBarEdge::None) return;
    CGRect bar = bounds;
    switch (selectionBarEdge_) {
        case UIButtonBarEdge::Left:
            bar.size.width = barWidth;
            break;
        case UIButtonBarEdge::Top:
            bar.size.height = barWidth;
            break;
        case UIButtonBarEdge::Right:
            bar.origin.x = bounds.maxX() - barWidth;
            bar.size.width = barWidth;
            break;
        case UIButtonBarEdge::Bottom:
            bar.origin.y = bounds.maxY() - barWidth;
            bar.size.height = barWidth;
            break;
        case UIButtonBarEdge::None:
            break;
    }
    canvas.fillRoundedRect(bar, {}, tintColorForState(UIControlState::Selected));
}

}  // namespace flarebox
