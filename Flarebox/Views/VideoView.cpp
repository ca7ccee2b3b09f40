#include <AVFoundation/AVPlayerItem.h>
#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Views/Translation.h>
#include <Flarebox/Views/VideoPlayerViewController.h>
#include <Flarebox/Views/VideoView.h>
#include <Foundation/NSNotificationCenter.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIButton.h>
#include <UIKit/UILabel.h>
#include <UIKit/UINib.h>
#include <UIKit/UIWindow.h>

#include <vector>

namespace flarebox {
namespace {

/// The content area's height on the design grid, in points.
constexpr double designHeight = 158;

}  // namespace

const ClassInfo& VideoView::staticClass() {
    static const Outlet outlets[] = {
        outlet<&VideoView::videoPreventView_>("videoPreventView"),
        outlet<&VideoView::btnPlay_>("btnPlay"),
        outlet<&VideoView::lbMessage_>("lbMessage"),
    };
    static const Action actions[] = {
        action<&VideoView::pressPlayButton>("pressPlayButton"),
        action<&VideoView::itemDidFinishPlaying>("itemDidFinishPlaying"),
    };
    static const ClassInfo info("VideoView", &UIView::staticClass(), createObject<VideoView>,
                                {.actions = actions, .outlets = outlets});
    return info;
}

VideoView::VideoView() = default;
VideoView::~VideoView() {
    NSNotificationCenter::defaultCenter().removeObserver(*this);
}

Ref<VideoView> VideoView::createVideoView() {
    VideoView::staticClass();
    const std::vector<Ref<NSObject>> objects =
        UINib::nibWithNibName("VideoView", flareboxBundle())->instantiateWithOwner(nullptr);
    return Ref<VideoView>(objects.empty() ? nullptr : objectCast<VideoView>(objects.front().get()));
}

void VideoView::awakeFromNib() {
    UIView::awakeFromNib();
    setTranslatesAutoresizingMaskIntoConstraints(false);
    translateTexts(*this);
    videoPreventView_->setAccessibilityTraits(UIAccessibilityTraits::StartsMediaSession);
}

void VideoView::layoutSubviews() {
    UIView::layoutSubviews();
    if (videoLayer_) videoLayer_->setFrame(videoPreventView_->bounds());
    lbMessage_->setFont(lbMessage_->font().fontWithSize(12 * bounds().height() / designHeight));
}

void VideoView::paletteDidChange() {
    UIView::paletteDidChange();
    if (videoLayer_) videoLayer_->layer().setCornerRadii(videoPreventView_->layer().cornerRadii());
}

void VideoView::loadAssetVideo(const Ref<FXAssetInfo>& asset) {
    if (!asset) return;
    assetInfo_ = asset;
    videoPreventView_->setAccessibilityLabel(spokenTitle(*asset));
    if (avPlayer_) avPlayer_->pause();
    removeVideoLayers();
    const NSURL url = NSURL::URLWithString(asset->videoMobile());
    if (!url) return showEmptyContent();
    avPlayer_ = AVPlayer::playerWithURL(url);
    avPlayer_->setActionAtItemEnd(AVPlayerActionAtItemEnd::None);
    videoLayer_ = AVPlayerLayer::playerLayerWithPlayer(avPlayer_);
    videoLayer_->setFrame(videoPreventView_->bounds());
    videoLayer_->setVideoGravity(AVLayerVideoGravity::ResizeAspect);
    videoLayer_->layer().setCornerRadii(videoPreventView_->layer().cornerRadii());
    videoPreventView_->addSubview(*videoLayer_);
    showVideoContent();
}

void VideoView::removeVideoLayers() {
    while (!videoPreventView_->subviews().empty()) videoPreventView_->subviews().front()->removeFromSuperview();
}

void VideoView::showEmptyContent() {
    lbMessage_->setHidden(false);
    btnPlay_->setHidden(true);
    videoPreventView_->setHidden(true);
}

void VideoView::showVideoContent() {
    lbMessage_->setHidden(true);
    btnPlay_->setHidden(false);
    videoPreventView_->setHidden(false);
}

void VideoView::pauseVideo() {
    if (avPlayer_) avPlayer_->pause();
    btnPlay_->setHidden(false);
}

bool VideoView::isVideoPlaying() const {
    return avPlayer_ && avPlayer_->rate() != 0 && !avPlayer_->error();
}

void VideoView::pressPlayButton() {
    if (!avPlayer_) return;
    const auto controller = make<VideoPlayerViewController>();
    controller->setWillDismiss([self = Ref<VideoView>(this)] {
        if (self->delegate_) self->delegate_->stopVideo();
    });
    controller->setWillAppear([self = Ref<VideoView>(this)] {
        if (self->delegate_) self->delegate_->startPlayingVideo();
    });
    controller->setPlayer(avPlayer_);
    playerController_ = controller;
    UIWindow* window = UIApplication::sharedApplication().keyWindow();
    if (window && window->rootViewController())
        window->rootViewController()->presentViewController(controller, true, nullptr);
    avPlayer_->seekToTime(0);
    avPlayer_->play();
}

void VideoView::dismissPlayer() {
    if (const auto controller = playerController_.lock()) controller->dismissViewController(false, nullptr);
}

void VideoView::itemDidFinishPlaying(NSNotification* notification) {
    if (auto* item = notification ? objectCast<AVPlayerItem>(notification->object()) : nullptr) item->seekToTime(0);
    pauseVideo();
}

}  // namespace flarebox
