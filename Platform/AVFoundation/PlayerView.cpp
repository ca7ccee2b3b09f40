#include <AVFoundation/PlayerView.h>
#include <UIKit/UIGestureRecognizer.h>
#include <UIKit/UIPalette.h>
#include <UIKit/UITouch.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace flarebox {
namespace {

// Messages stand on black, whatever the palette.
constexpr UIColor textColor = UIColor::rgb(0xF4F6F8), secondaryColor = UIColor::rgb(0xA9B1BD);
constexpr float pillStrength = 0.82F, hairlineStrength = 0.08F;
constexpr CGFloat margin = 16, doneWidth = 68, doneHeight = 36, spinnerSide = 36, widestMessage = 420;
constexpr CGFloat titleSize = 17, reasonSize = 14, messageSpacing = 6;
/// A touch that moves further is no tap.
constexpr CGFloat tapSlop = 10;
constexpr double fadeTime = 0.15;
/// Short waits, above all after a jump within what is already loaded, need no spinner.
constexpr double spinnerDelay = 0.25;

MainQueue::Token takeBack(MainQueue::Token& token) {
    if (token) MainQueue::shared().cancel(token);
    return token = 0;
}

}  // namespace

/// Sees every touch of the player, also those of its buttons, and takes none.
class PlayerView::TouchWatcher : public UIGestureRecognizer {
public:
    explicit TouchWatcher(PlayerView& view) : UIGestureRecognizer(nullptr, ""), view_(&view) {}
    void touchesBegan(UITouch&) override { noticeTouch(); }
    void touchesMoved(UITouch&) override { noticeTouch(); }
    void touchesEnded(UITouch&) override { noticeTouch(); }

private:
    void noticeTouch() {
        if (const Ref<PlayerView> view = view_.lock()) view->restartIdleTime();
    }
    Weak<PlayerView> view_;
};

const ClassInfo& PlayerView::staticClass() {
    static const ClassInfo info("PlayerView", &UIView::staticClass(), createObject<PlayerView>);
    return info;
}

PlayerView::PlayerView() : layer_(make<AVPlayerLayer>()), spinner_(make<UIActivityIndicatorView>()) {
    setBackgroundColor(UIColor::blackColor());
    layer_->setAccessibilityLabel("Video");
    layer_->setAccessibilityTraits(UIAccessibilityTraits::StartsMediaSession);
    addSubview(*layer_);
    addMessage();
    spinner_->setAccessibilityIdentifier("player.spinner");
    spinner_->setUserInteractionEnabled(false);
    addSubview(*spinner_);
    addControls();
    addGestureRecognizer(make<TouchWatcher>(*this));
}

PlayerView::~PlayerView() {
    takeBack(idleTimer_);
    takeBack(spinnerTimer_);
}

void PlayerView::addControls() {
    controls_ = make<UIView>();
    addSubview(*controls_);
    bar_ = make<PlayerControlBar>();
    controls_->addSubview(*bar_);
    done_ = make<UIButton>();
    done_->setAccessibilityIdentifier("player.done");
    done_->setTitle("Done");
    const UIPalette& palette = UIPalette::current();
    done_->setTitleColor(palette.color(UIPalette::Shade::Text));
    done_->titleLabel().setFont(palette.font(UIPalette::Typeface::Button, 15, UIFontWeight::Semibold));
    done_->setBackgroundColor(palette.color(UIPalette::Shade::Panel).withAlpha(pillStrength), UIControlState::Normal);
    done_->layer().setBorderColor(palette.color(UIPalette::Shade::Text).withAlpha(hairlineStrength));
    done_->layer().setBorderWidth(1);
    done_->layer().setCornerRadius(doneHeight / 2);
    controls_->addSubview(*done_);
}

void PlayerView::addMessage() {
    const auto makeLabel = [this](CGFloat size, UIFontWeight weight, const UIColor& color) {
        auto label = make<UILabel>();
        label->setFont(UIPalette::current().font(UIPalette::Typeface::Text, size, weight));
        label->setTextColor(color);
        label->setTextAlignment(NSTextAlignment::Center);
        label->setNumberOfLines(0);
        label->setUserInteractionEnabled(false);
        label->setHidden(true);
        addSubview(*label);
        return label;
    };
    title_ = makeLabel(titleSize, UIFontWeight::Semibold, textColor);
    title_->setText("This video cannot be played");
    title_->setIcon(VectorIcon::named("warningTriangle"));
    title_->setNumberOfLines(1);
    title_->setAdjustsFontSizeToFitWidth(true);
    reason_ = makeLabel(reasonSize, UIFontWeight::Regular, secondaryColor);
    reason_->setAccessibilityIdentifier("player.reason");
}

void PlayerView::setPlayer(const Ref<AVPlayer>& player) {
    player_ = player;
    layer_->setPlayer(player);
    showState();
}

void PlayerView::showState() {
    showMessage(player_ ? player_->error() : nullptr);
    showSpinner(player_ && player_->isWaiting());
    if (player_) bar_->show(*player_);
    const bool plays = mayFade();
    if (std::exchange(wasPlaying_, plays) == plays) return;
    if (plays)
        restartIdleTime();
    else
        showControls();
}

bool PlayerView::mayFade() const {
    return player_ && player_->rate() > 0 && !player_->error();
}

void PlayerView::showControls() {
    fadeControls(true);
    restartIdleTime();
}

void PlayerView::hideControls() {
    takeBack(idleTimer_);
    fadeControls(false);
}

void PlayerView::fadeControls(bool visible) {
    if (std::exchange(showsControls_, visible) == visible) return;
    UIView::animateWithDuration(fadeTime, [this, visible] { controls_->setAlpha(visible ? 1 : 0); });
}

void PlayerView::restartIdleTime() {
    takeBack(idleTimer_);
    if (!mayFade() || !showsControls_) return;
    idleTimer_ = MainQueue::shared().after(idleTime, [weak = Weak<PlayerView>(this)] {
        const Ref<PlayerView> view = weak.lock();
        if (!view) return;
        view->idleTimer_ = 0;
        // A finger may rest on the knob for as long as it likes.
        if (view->bar_->scrubber().isDragged()) return view->restartIdleTime();
        if (view->mayFade()) view->hideControls();
    });
}

void PlayerView::showSpinner(bool isWaiting) {
    if (!isWaiting) {
        takeBack(spinnerTimer_);
        spinner_->stopAnimating();
        return;
    }
    if (spinnerTimer_ || spinner_->isAnimating()) return;
    spinnerTimer_ = MainQueue::shared().after(spinnerDelay, [weak = Weak<PlayerView>(this)] {
        const Ref<PlayerView> view = weak.lock();
        if (!view) return;
        view->spinnerTimer_ = 0;
        view->spinner_->startAnimating();
    });
}

void PlayerView::showMessage(const Ref<NSError>& error) {
    title_->setHidden(!error);
    reason_->setHidden(!error);
    layer_->setHidden(error != nullptr);
    NSString reason;
    if (error) reason = errorText_ ? errorText_(*error) : NSString(error->localizedDescription());
    if (reason_->text() == reason) return;
    reason_->setText(reason);
    setNeedsLayout();
}

void PlayerView::layoutSubviews() {
    UIView::layoutSubviews();
    const CGRect whole = bounds();
    layer_->setFrame(whole);
    controls_->setFrame(whole);
    const UIEdgeInsets safe = safeAreaInsets();
    const CGFloat barHeight = PlayerControlBar::barHeight + safe.bottom;
    bar_->setFrame(CGRectMake(0, whole.height() - barHeight, whole.width(), barHeight));
    done_->setFrame(CGRectMake(safe.left + margin, safe.top + margin, doneWidth, doneHeight));
    spinner_->setFrame(CGRectMake(std::round(whole.midX() - spinnerSide / 2),
                                  std::round(whole.midY() - spinnerSide / 2), spinnerSide, spinnerSide));
    layoutMessage();
}

void PlayerView::layoutMessage() {
    const CGFloat width = std::min(widestMessage, std::max(0.0, bounds().width() - 2 * margin));
    const CGFloat left = std::round(bounds().midX() - width / 2);
    const CGFloat titleHeight = std::ceil(title_->sizeThatFits(width).height);
    const CGFloat reasonHeight = std::ceil(reason_->sizeThatFits(width).height);
    const CGFloat top = std::round(bounds().midY() - (titleHeight + messageSpacing + reasonHeight) / 2);
    title_->setFrame(CGRectMake(left, top, width, titleHeight));
    reason_->setFrame(CGRectMake(left, top + titleHeight + messageSpacing, width, reasonHeight));
}

void PlayerView::pointerMoved() {
    showControls();
}

void PlayerView::touchesBegan(UITouch& touch) {
    isTap_ = true;
    tapStart_ = touch.locationInView(this);
}

void PlayerView::touchesMoved(UITouch& touch) {
    const CGPoint way = touch.locationInView(this) - tapStart_;
    if (std::hypot(way.x, way.y) > tapSlop) isTap_ = false;
}

void PlayerView::touchesEnded(UITouch&) {
    if (!std::exchange(isTap_, false)) return;
    if (showsControls_ && mayFade())
        hideControls();
    else
        showControls();
}

void PlayerView::touchesCancelled(UITouch&) {
    isTap_ = false;
}

}  // namespace flarebox
