#include <UIKit/AlertView.h>
#include <UIKit/UIAlertController.h>
#include <UIKit/UIButton.h>
#include <UIKit/UILabel.h>
#include <UIKit/UIPalette.h>

#include <algorithm>
#include <cmath>

namespace flarebox {
namespace {

using enum UIPalette::Shade;

constexpr UIColor dimming = UIColor::rgb(0x000000, 0.55F);
constexpr float hairlineStrength = 0.08F, pressedStrength = 0.06F;

// Points on a small screen; larger screens get a little more of everything.
constexpr CGFloat panelWidth = 270, screenMargin = 16, padding = 18, textSpacing = 6, buttonHeight = 44, titleSize = 17,
                  messageSize = 13, buttonSize = 16;
constexpr CGFloat referenceSide = 640, largestScale = 1.4;

CGFloat scaleFor(CGSize screen) {
    return std::clamp(std::min(screen.width, screen.height) / referenceSide, 1.0, largestScale);
}

const UIColor& colorOf(UIPalette::Shade shade) {
    return UIPalette::current().color(shade);
}

CGFloat cornerRadius() {
    return UIPalette::current().radius(UIPalette::Corner::Panel);
}

UIFont buttonFont(CGFloat scale) {
    return UIPalette::current().font(UIPalette::Typeface::Button, buttonSize * scale, UIFontWeight::Semibold);
}

const UIColor& titleColor(UIAlertActionStyle style) {
    switch (style) {
        case UIAlertActionStyle::Default:
            return colorOf(Accent);
        case UIAlertActionStyle::Cancel:
            return colorOf(Text);
        case UIAlertActionStyle::Destructive:
            return colorOf(Error);
    }
    return colorOf(Text);
}

}  // namespace

const ClassInfo& AlertView::staticClass() {
    static const ClassInfo info("AlertView", &UIView::staticClass(), nullptr);
    return info;
}

AlertView::AlertView(UIAlertController& alert) : panel_(make<UIView>()) {
    setBackgroundColor(dimming);
    addSubview(*panel_);
    panel_->setAccessibilityIdentifier("alert");
    panel_->setAccessibilityContainerType(UIAccessibilityContainerType::Alert);
    panel_->setAccessibilityLabel(alert.title().text().empty() ? alert.message() : alert.title());
    panel_->setBackgroundColor(colorOf(Surface));
    panel_->layer().setBorderColor(colorOf(Text).withAlpha(hairlineStrength));
    panel_->layer().setBorderWidth(1);
    panel_->layer().setShadow({24, {0, 8}, UIColor::rgb(0, 0.35F)});
    if (!alert.title().text().empty()) {
        title_ = makeLabel(colorOf(Text));
        title_->setText(alert.title());
    }
    if (!alert.message().text().empty()) {
        message_ = makeLabel(colorOf(title_ ? SecondaryText : Text));
        message_->setText(alert.message());
    }
    for (const auto& action : alert.actions()) addButton(alert, action);
}

Ref<UILabel> AlertView::makeLabel(const UIColor& color) {
    auto label = make<UILabel>();
    label->setTextColor(color);
    label->setTextAlignment(NSTextAlignment::Center);
    label->setNumberOfLines(0);
    panel_->addSubview(*label);
    return label;
}

Ref<UIView> AlertView::makeHairline() {
    auto hairline = make<UIView>();
    hairline->setBackgroundColor(colorOf(Text).withAlpha(hairlineStrength));
    hairline->setUserInteractionEnabled(false);
    panel_->addSubview(*hairline);
    return hairline;
}

void AlertView::addButton(UIAlertController& alert, const Ref<UIAlertAction>& action) {
    auto button = make<UIButton>();
    button->setTitle(action->title());
    button->setTitleColor(titleColor(action->style()));
    button->setBackgroundColor(colorOf(Text).withAlpha(pressedStrength), UIControlState::Highlighted);
    button->setAccessibilityIdentifier("alert." + action->title().string());
    button->addAction(
        [controller = Weak<UIAlertController>(&alert), action] {
            if (const auto shown = controller.lock()) shown->choose(*action);
        },
        UIControlEvents::TouchUpInside);
    panel_->addSubview(*button);
    buttons_.push_back(button);
    if (!preferredButton_ && action->style() == UIAlertActionStyle::Default) preferredButton_ = button;
    hairlines_.push_back(makeHairline());
}

UIView* AlertView::preferredFocusedView() {
    if (preferredButton_) return preferredButton_.get();
    return buttons_.empty() ? nullptr : buttons_.front().get();
}

void AlertView::layoutSubviews() {
    UIView::layoutSubviews();
    const UIEdgeInsets safe = safeAreaInsets();
    const CGSize screen{bounds().width() - safe.left - safe.right, bounds().height() - safe.top - safe.bottom};
    const CGFloat scale = scaleFor(screen);
    const CGFloat width = std::min(panelWidth * scale, screen.width - 2 * screenMargin);
    if (width <= 0) return;
    const CGFloat rows = fitSideBySide(width, scale) ? 1 : static_cast<CGFloat>(buttons_.size());
    const CGFloat heightLeft = screen.height - 2 * screenMargin - rows * buttonHeight * scale;
    const CGFloat height = layoutButtons(width, layoutTexts(width, heightLeft, scale), scale);
    // On whole points, so that hairlines stay sharp.
    const CGPoint corner{std::round(safe.left + (screen.width - width) / 2),
                         std::round(safe.top + (screen.height - height) / 2)};
    panel_->setFrame({corner, {width, height}});
    panel_->layer().setCornerRadius(cornerRadius() * scale);
}

CGFloat AlertView::layoutTexts(CGFloat width, CGFloat heightLeft, CGFloat scale) {
    const CGFloat textWidth = width - 2 * padding * scale;
    CGFloat y = padding * scale;
    const auto place = [&](UILabel& label, const UIFont& font) {
        label.setFont(font);
        const CGFloat room = std::max(0.0, heightLeft - y - padding * scale);
        const CGFloat height = std::min(std::ceil(label.sizeThatFits(textWidth).height), room);
        label.setFrame({{padding * scale, y}, {textWidth, height}});
        y += height;
    };
    const UIPalette& palette = UIPalette::current();
    if (title_) place(*title_, palette.font(UIPalette::Typeface::Title, titleSize * scale, UIFontWeight::Semibold));
    if (title_ && message_) y += textSpacing * scale;
    if (message_)
        place(*message_, palette.font(UIPalette::Typeface::Text, (title_ ? messageSize : messageSize + 1) * scale));
    return title_ || message_ ? std::round(y + padding * scale) : 0;
}

bool AlertView::fitSideBySide(CGFloat width, CGFloat scale) const {
    if (buttons_.size() != 2) return false;
    return std::ranges::all_of(buttons_, [&](const Ref<UIButton>& button) {
        const TextStyle style{.font = buttonFont(scale)};
        return measureText(button->currentTitle().text(), style, width).width <= width / 2 - 2 * textSpacing * scale;
    });
}

CGFloat AlertView::layoutButtons(CGFloat width, CGFloat top, CGFloat scale) {
    const bool sideBySide = fitSideBySide(width, scale);
    const CGFloat height = std::round(buttonHeight * scale), radius = cornerRadius() * scale;
    const CGFloat half = std::round(width / 2);
    CGFloat y = top;
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        const bool isLast = i + 1 == buttons_.size(), isRight = sideBySide && i == 1;
        const CGFloat x = isRight ? half : 0;
        UIButton& button = *buttons_[i];
        button.titleLabel().setFont(buttonFont(scale));
        button.setFrame({{x, y}, {isRight ? width - half : sideBySide ? half : width, height}});
        // Sub-views are not clipped to the panel's rounded corners.
        const bool atBottom = sideBySide || isLast;
        button.layer().setCornerRadii({.bottomRight = atBottom && (!sideBySide || isRight) ? radius : 0,
                                       .bottomLeft = atBottom && !isRight ? radius : 0});
        hairlines_[i]->setFrame(isRight ? CGRectMake(x, y, 1, height) : CGRectMake(0, y, width, 1));
        if (!sideBySide) y += height;
    }
    return sideBySide ? y + height : y;
}

}  // namespace flarebox
