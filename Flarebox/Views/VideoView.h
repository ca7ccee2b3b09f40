#pragma once

#include <AVFoundation/AVPlayer.h>
#include <AVFoundation/AVPlayerLayer.h>
#include <Flarebox/Models/FXAssetInfo.h>
#include <Foundation/Export.h>
#include <UIKit/UIView.h>
#include <UIKit/WeakDelegate.h>

namespace flarebox {

class NSNotification;
class UIButton;
class UILabel;
class VideoPlayerViewController;

/// Who makes room for the full-screen player.
class FLAREBOX_EXPORT VideoViewDelegate {
public:
    virtual ~VideoViewDelegate() = default;
    /// The player is about to appear, and about to disappear.
    virtual void startPlayingVideo() {}
    virtual void stopVideo() {}
};

/// The current asset's video: its first frame behind a play button, or a message where there is none. Main thread.
class FLAREBOX_EXPORT VideoView : public UIView {
    FLAREBOX_CLASS(VideoView)
public:
    VideoView();
    ~VideoView() override;
    /// Made from its layout file; null, with a message in the log, when the kit's resources are missing.
    static Ref<VideoView> createVideoView();

    /// Not owned; may be null. One that is no NSObject takes itself back before it goes.
    void setDelegate(VideoViewDelegate* delegate) { delegate_ = delegate; }
    VideoViewDelegate* delegate() const { return delegate_.get(); }
    /// Null as long as no asset with a video was loaded; the last one's player otherwise.
    const Ref<AVPlayer>& avPlayer() const { return avPlayer_; }
    const Ref<FXAssetInfo>& assetInfo() const { return assetInfo_; }

    /// Prepares the asset's video; nothing plays yet. Null does nothing.
    void loadAssetVideo(const Ref<FXAssetInfo>& asset);
    void showEmptyContent();
    void showVideoContent();
    void pauseVideo();
    /// Whether there is a player that moves and has no error.
    bool isVideoPlaying() const;
    /// Takes the full-screen player away, if it is shown.
    void dismissPlayer();
    /// Shows the video full screen, from its beginning.
    void pressPlayButton();
    /// Rewinds the player item that the notification is about, and pauses.
    void itemDidFinishPlaying(NSNotification* notification);

    void awakeFromNib() override;
    void layoutSubviews() override;
    void paletteDidChange() override;

private:
    void removeVideoLayers();

    Weak<UIView> videoPreventView_;
    Weak<UIButton> btnPlay_;
    Weak<UILabel> lbMessage_;
    Ref<AVPlayer> avPlayer_;
    Ref<AVPlayerLayer> videoLayer_;
    Ref<FXAssetInfo> assetInfo_;
    Weak<VideoPlayerViewController> playerController_;
    WeakDelegate<VideoViewDelegate> delegate_;
};

}  // namespace flarebox
