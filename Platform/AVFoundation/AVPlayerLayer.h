#pragma once

#include <AVFoundation/AVPlayer.h>
#include <Foundation/Export.h>
#include <UIKit/UIView.h>

namespace flarebox {

/// How a video fills its layer: whole with bars beside it, cut off, or stretched.
enum class AVLayerVideoGravity : std::uint8_t { ResizeAspect, ResizeAspectFill, Resize };

/// Shows the frames of a player; several may show one. A view that is added where a layer would be, taking no touches.
/// Draws only when there is a new frame. Main thread.
class FLAREBOX_EXPORT AVPlayerLayer : public UIView, private AVPlayerObserver {
    FLAREBOX_CLASS(AVPlayerLayer)
public:
    AVPlayerLayer();
    ~AVPlayerLayer() override;
    static Ref<AVPlayerLayer> playerLayerWithPlayer(const Ref<AVPlayer>& player);

    /// May be null.
    const Ref<AVPlayer>& player() const { return player_; }
    void setPlayer(const Ref<AVPlayer>& player);
    /// ResizeAspect unless set.
    AVLayerVideoGravity videoGravity() const { return gravity_; }
    void setVideoGravity(AVLayerVideoGravity gravity);
    /// A frame has been drawn.
    bool isReadyForDisplay() const { return shown_ != nullptr; }

    bool showsPixelBuffer() const override { return true; }
    PixelBuffer pixelBuffer() override;

private:
    void playerChanged(AVPlayer& player) override;

    Ref<AVPlayer> player_;
    /// Keeps the pixels that were last handed out.
    std::shared_ptr<const VideoFrame> shown_;
    bool hasAskedForDisplay_ = false;
    AVLayerVideoGravity gravity_ = AVLayerVideoGravity::ResizeAspect;
};

}  // namespace flarebox
