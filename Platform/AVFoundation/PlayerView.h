#pragma once

#include <AVFoundation/AVPlayerLayer.h>
#include <AVFoundation/PlayerControlBar.h>
#include <Foundation/MainQueue.h>
#include <UIKit/UIActivityIndicatorView.h>

namespace flarebox {

/// A video on black with the controls of a player over it. While it plays the controls fade when nothing has been
/// touched or moved for a while, and come back with the next touch or movement. Main thread.
class PlayerView : public UIView {
    FLAREBOX_CLASS(PlayerView)
public:
    /// Seconds after which controls that nobody uses fade.
    static constexpr double idleTime = 3;

    PlayerView();
    ~PlayerView() override;

    /// The player whose frames are shown; null for none.
    void setPlayer(const Ref<AVPlayer>& player);
    /// Shows how the player stands now; without one as good as nothing.
    void showState();

    bool showsControls() const { return showsControls_; }
    /// And keeps them for the idle time.
    void showControls();
    void hideControls();

    /// The words for an error; its own description unless set.
    void setErrorText(std::function<NSString(const NSError&)> errorText) { errorText_ = std::move(errorText); }

    UIButton& doneButton() { return *done_; }
    PlayerControlBar& bar() { return *bar_; }
    const AVPlayerLayer& videoLayer() const { return *layer_; }
    const UIActivityIndicatorView& spinner() const { return *spinner_; }
    /// Why the video cannot be played; hidden as long as it can.
    const UILabel& reasonLabel() const { return *reason_; }

    UIView* preferredFocusedView() override { return &bar_->playButton(); }
    /// Keys keep the controls in sight.
    void revealFocused(UIView&) override { showControls(); }

    void layoutSubviews() override;
    void pointerMoved() override;
    void touchesBegan(UITouch& touch) override;
    void touchesMoved(UITouch& touch) override;
    void touchesEnded(UITouch& touch) override;
    void touchesCancelled(UITouch& touch) override;

private:
    class TouchWatcher;
    void addControls();
    void addMessage();
    void showMessage(const Ref<NSError>& error);
    void showSpinner(bool isWaiting);
    void fadeControls(bool visible);
    bool mayFade() const;
    void restartIdleTime();
    void layoutMessage();

    Ref<AVPlayer> player_;
    Ref<AVPlayerLayer> layer_;
    Ref<UIView> controls_;
    Ref<PlayerControlBar> bar_;
    Ref<UIButton> done_;
    Ref<UIActivityIndicatorView> spinner_;
    Ref<UILabel> title_, reason_;
    std::function<NSString(const NSError&)> errorText_;
    /// 0 while none is pending.
    MainQueue::Token idleTimer_ = 0, spinnerTimer_ = 0;
    bool showsControls_ = true, wasPlaying_ = false, isTap_ = false;
    CGPoint tapStart_;
};

}  // namespace flarebox
