#include <AVFoundation/AVPlayerLayer.h>

#include <utility>

namespace flarebox {
namespace {

UIViewContentMode contentModeOf(AVLayerVideoGravity gravity) {
    switch (gravity) {
        case AVLayerVideoGravity::ResizeAspectFill:
            return UIViewContentMode::ScaleAspectFill;
        case AVLayerVideoGravity::Resize:
            return UIViewContentMode::ScaleToFill;
        case AVLayerVideoGravity::ResizeAspect:
            break;
    }
    return UIViewContentMode::ScaleAspectFit;
}

}  // namespace

const ClassInfo& AVPlayerLayer::staticClass() {
    static const ClassInfo info("AVPlayerLayer", &UIView::staticClass(), createObject<AVPlayerLayer>);
    return info;
}

AVPlayerLayer::AVPlayerLayer() {
    setUserInteractionEnabled(false);
    setContentMode(contentModeOf(gravity_));
}

AVPlayerLayer::~AVPlayerLayer() {
    if (player_) player_->removeObserver(*this);
}

Ref<AVPlayerLayer> AVPlayerLayer::playerLayerWithPlayer(const Ref<AVPlayer>& player) {
    auto layer = make<AVPlayerLayer>();
    layer->setPlayer(player);
    return layer;
}

void AVPlayerLayer::setPlayer(const Ref<AVPlayer>& player) {
    if (player_ == player) return;
    if (player_) player_->removeObserver(*this);
    player_ = player;
    if (player_) player_->addObserver(*this);
    setNeedsDisplay();
}

void AVPlayerLayer::setVideoGravity(AVLayerVideoGravity gravity) {
    gravity_ = gravity;
    setContentMode(contentModeOf(gravity));
}

UIView::PixelBuffer AVPlayerLayer::pixelBuffer() {
    // Only what can be seen is asked for its pixels, and only what can be seen has to load.
    if (player_) player_->load();
    hasAskedForDisplay_ = false;
    shown_ = player_ ? player_->currentFrame() : nullptr;
    return shown_ ? shown_->picture : PixelBuffer();
}

void AVPlayerLayer::playerChanged(AVPlayer& player) {
    // While it is hidden one request is enough.
    if (hasAskedForDisplay_ || player.currentFrame() == shown_) return;
    hasAskedForDisplay_ = true;
    setNeedsDisplay();
}

}  // namespace flarebox
