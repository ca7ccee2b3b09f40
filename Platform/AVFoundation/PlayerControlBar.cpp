#include <AVFoundation/AVPlayer.h>
#include <AVFoundation/PlayerControlBar.h>
#include <UIKit/UIPalette.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace flarebox {
namespace {

constexpr float barStrength = 0.82F, hairlineStrength = 0.08F;
constexpr CGFloat margin = 8, buttonWidth = 40, spacing = 8, textSize = 13, iconSize = 20;
/// Longer ones are not told apart any more.
constexpr double longestTime = 359999;
constexpr const char* unknownTime = "–:––";

const UIColor& textColor() {
    return UIPalette::current().color(UIPalette::Shade::Text);
}

TextStyle timeStyle() {
    return {.font = UIPalette::current().font(UIPalette::Typeface::Text, textSize, UIFontWeight::Medium),
            .color = textColor()};
}

CGFloat widthOf(const std::string& time) {
    return std::ceil(measureText(time, timeStyle(), std::numeric_limits<CGFloat>::infinity()).width) + 3;
}

std::string withZeroes(std::string time) {
    std::ranges::replace_if(
        time, [](unsigned char c) { return std::isdigit(c) != 0; }, '0');
    return time;
}

}  // namespace

std::string playbackTimeText(double seconds) {
    const double limited = seconds > 0 ? std::min(seconds, longestTime) : 0;
    const auto whole = static_cast<int>(std::floor(limited + 1e-6));
    char text[16];
    if (whole >= 3600)
        std::snprintf(text, sizeof text, "%d:%02d:%02d", whole / 3600, whole / 60 % 60, whole % 60);
    else
        std::snprintf(text, sizeof text, "%d:%02d", whole / 60, whole % 60);
    return text;
}

const ClassInfo& PlayerControlBar::staticClass() {
    static const ClassInfo info("PlayerControlBar", &UIView::staticClass(), createObject<PlayerControlBar>);
    return info;
}

PlayerControlBar::PlayerControlBar()
    : play_(makeButton("play", "play", "pause", "Play", "Pause")),
      mute_(makeButton("mute", "sound", "mute", "Sound off", "Sound on")),
      elapsed_(makeLabel("elapsed", NSTextAlignment::Right)),
      remaining_(makeLabel("remaining", NSTextAlignment::Left)),
      scrubber_(make<PlayerScrubber>()),
      hairline_(make<UIView>()) {
    setBackgroundColor(UIPalette::current().color(UIPalette::Shade::Panel).withAlpha(barStrength));
    scrubber_->setAccessibilityIdentifier("player.scrubber");
    scrubber_->setAccessibilityLabel("Position");
    addSubview(*scrubber_);
    hairline_->setBackgroundColor(textColor().withAlpha(hairlineStrength));
    hairline_->setUserInteractionEnabled(false);
    addSubview(*hairline_);
    showTimes(0, 0);
}

Ref<UIButton> PlayerControlBar::makeButton(const char* name, const char* icon, const char* selectedIcon,
                                           const char* label, const char* selectedLabel) {
    auto button = make<UIButton>();
    button->setAccessibilityIdentifier(std::string("player.") + name);
    button->setIcon(VectorIcon::named(icon));
    button->setIcon(VectorIcon::named(selectedIcon), UIControlState::Selected);
    button->setAccessibilityLabel(label);
    button->setAccessibilityLabel(selectedLabel, UIControlState::Selected);
    button->setIconSize(iconSize);
    button->setTintColor(textColor());
    button->setTintColor(UIPalette::current().color(UIPalette::Shade::DisabledSign), UIControlState::Disabled);
    button->layer().setCornerRadius(8);
    addSubview(*button);
    return button;
}

Ref<UILabel> PlayerControlBar::makeLabel(const char* name, NSTextAlignment alignment) {
    auto label = make<UILabel>();
    label->setAccessibilityIdentifier(std::string("player.") + name);
    label->setFont(timeStyle().font);
    label->setTextColor(textColor());
    label->setTextAlignment(alignment);
    // The scrubber tells the times.
    label->setIsAccessibilityElement(false);
    addSubview(*label);
    return label;
}

void PlayerControlBar::show(const AVPlayer& player) {
    const bool isUsable = player.error() == nullptr;
    play_->setEnabled(isUsable);
    mute_->setEnabled(isUsable);
    play_->setSelected(player.rate() > 0);
    mute_->setSelected(player.isMuted());
    scrubber_->setEnabled(isUsable && player.duration() > 0);
    showTimes(player.currentTime(), player.duration());
}

void PlayerControlBar::showTimes(double time, double duration) {
    const bool isKnown = duration > 0;
    // Of whole seconds, so that both together come to the duration.
    const double left = std::floor(duration) - std::floor(time);
    elapsed_->setText(isKnown || time > 0 ? playbackTimeText(time) : unknownTime);
    remaining_->setText(isKnown ? "−" + playbackTimeText(left) : unknownTime);
    scrubber_->setPosition(isKnown ? time / duration : 0);
    scrubber_->setStep(isKnown ? arrowStep / duration : 0);
    scrubber_->setAccessibilityValue(elapsed_->text().string() + (isKnown ? " / " + playbackTimeText(duration) : ""));
    std::string widest = withZeroes(playbackTimeText(std::max(duration + 1, time)));
    if (widest == widestTime_) return;
    widestTime_ = std::move(widest);
    setNeedsLayout();
}

void PlayerControlBar::layoutSubviews() {
    UIView::layoutSubviews();
    // The bar itself reaches to the edges.
    const UIEdgeInsets safe = safeAreaInsets();
    const CGFloat width = bounds().width() - safe.right, height = bounds().height() - safe.bottom;
    const CGFloat elapsedWidth = widthOf(widestTime_), remainingWidth = widthOf("−" + widestTime_);
    play_->setFrame(CGRectMake(safe.left + margin, 0, buttonWidth, height));
    mute_->setFrame(CGRectMake(width - margin - buttonWidth, 0, buttonWidth, height));
    elapsed_->setFrame(CGRectMake(play_->frame().maxX() + spacing / 2, 0, elapsedWidth, height));
    remaining_->setFrame(CGRectMake(mute_->frame().minX() - spacing / 2 - remainingWidth, 0, remainingWidth, height));
    const CGFloat left = elapsed_->frame().maxX() + spacing, right = remaining_->frame().minX() - spacing;
    scrubber_->setFrame(CGRectMake(left, 0, std::max(0.0, right - left), height));
    hairline_->setFrame(CGRectMake(0, 0, bounds().width(), 1));
}

}  // namespace flarebox
