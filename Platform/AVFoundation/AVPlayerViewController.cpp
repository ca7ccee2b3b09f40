#include <AVFoundation/AVPlayerViewController.h>
#include <AVFoundation/PlayerView.h>

#include <algorithm>
#include <utility>

namespace flarebox {

const ClassInfo& AVPlayerViewController::staticClass() {
    using Self = AVPlayerViewController;
    static const Action actions[] = {
        action<&Self::pressPlay>("pressPlay"),         action<&Self::pressMute>("pressMute"),
        action<&Self::pressDone>("pressDone"),         action<&Self::scrubbingBegan>("scrubbingBegan"),
        action<&Self::scrubberMoved>("scrubberMoved"), action<&Self::scrubbingEnded>("scrubbingEnded"),
    };
    static const ClassInfo info("AVPlayerViewController", &UIViewController::staticClass(),
                                createObject<AVPlayerViewController>, {.actions = actions});
    return info;
}

AVPlayerViewController::AVPlayerViewController() = default;

AVPlayerViewController::~AVPlayerViewController() {
    observe(false);
}

Ref<UIView> AVPlayerViewController::loadView() {
    return make<PlayerView>();
}

PlayerView& AVPlayerViewController::playerView() {
    return static_cast<PlayerView&>(view());
}

void AVPlayerViewController::viewDidLoad() {
    UIViewController::viewDidLoad();
    PlayerControlBar& bar = playerView().bar();
    bar.playButton().addTarget(*this, "pressPlay", UIControlEvents::TouchUpInside);
    bar.muteButton().addTarget(*this, "pressMute", UIControlEvents::TouchUpInside);
    playerView().doneButton().addTarget(*this, "pressDone", UIControlEvents::TouchUpInside);
    bar.scrubber().addTarget(*this, "scrubbingBegan", UIControlEvents::TouchDown);
    bar.scrubber().addTarget(*this, "scrubberMoved", UIControlEvents::ValueChanged);
    bar.scrubber().addTarget(
        *this, "scrubbingEnded",
        UIControlEvents::TouchUpInside | UIControlEvents::TouchUpOutside | UIControlEvents::TouchCancel);
    playerView().setPlayer(player_);
}

void AVPlayerViewController::setPlayer(const Ref<AVPlayer>& player) {
    if (player_ == player) return;
    observe(false);
    player_ = player;
    playsAfterScrubbing_ = false;
    observe(isShown_);
    if (viewIfLoaded()) playerView().setPlayer(player_);
}

void AVPlayerViewController::observe(bool observes) {
    if (!player_ || std::exchange(isObserving_, observes) == observes) return;
    if (!observes) return player_->removeObserver(*this);
    player_->addObserver(*this);
    player_->load();
}

void AVPlayerViewController::viewWillAppear(bool animated) {
    UIViewController::viewWillAppear(animated);
    isShown_ = true;
    observe(true);
    playerView().showState();
    playerView().showControls();
}

void AVPlayerViewController::viewDidDisappear(bool animated) {
    isShown_ = false;
    observe(false);
    UIViewController::viewDidDisappear(animated);
}

void AVPlayerViewController::playerChanged(AVPlayer&) {
    playerView().showState();
}

void AVPlayerViewController::pressPlay() {
    if (!player_) return;
    if (player_->rate() > 0) return player_->pause();
    if (player_->hasEnded()) player_->seekToTime(0);
    player_->play();
}

void AVPlayerViewController::pressMute() {
    if (player_) player_->setMuted(!player_->isMuted());
}

void AVPlayerViewController::pressDone() {
    if (player_) player_->pause();
    dismissViewController(true, nullptr);
}

void AVPlayerViewController::scrubbingBegan() {
    if (!player_) return;
    playsAfterScrubbing_ = player_->rate() > 0;
    player_->pause();
}

void AVPlayerViewController::scrubberMoved() {
    if (player_) player_->seekToTime(playerView().bar().scrubber().position() * player_->duration());
}

void AVPlayerViewController::scrubbingEnded() {
    if (player_ && std::exchange(playsAfterScrubbing_, false)) player_->play();
}

void AVPlayerViewController::skip(double seconds) {
    if (!player_ || !(player_->duration() > 0)) return;
    player_->seekToTime(std::clamp(player_->currentTime() + seconds, 0.0, player_->duration()));
}

bool AVPlayerViewController::keyDown(std::string_view name) {
    playerView().showControls();
    if (name == "escape")
        pressDone();
    else if (name == "space")
        pressPlay();
    else if (name == "left")
        skip(-PlayerControlBar::arrowStep);
    else if (name == "right")
        skip(PlayerControlBar::arrowStep);
    else if (name == "m")
        pressMute();
    else
        return false;
    return true;
}

}  // namespace flarebox
