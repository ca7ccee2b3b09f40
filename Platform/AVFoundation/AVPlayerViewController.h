#pragma once

#include <AVFoundation/AVPlayer.h>
#include <UIKit/UIViewController.h>

namespace flarebox {

class PlayerView;

/// Shows a player's video on black over the whole window, letter-boxed, with controls: play and pause, a scrubber, the
/// time and the time left, sound, and a button that ends it. Keys: space plays and pauses, the left and right arrows go
/// back and on by 5 seconds, M silences, Escape ends it. Main thread.
class AVPlayerViewController : public UIViewController, private AVPlayerObserver {
    FLAREBOX_CLASS(AVPlayerViewController)
public:
    AVPlayerViewController();
    ~AVPlayerViewController() override;

    /// May be null, and may be shown elsewhere at the same time.
    const Ref<AVPlayer>& player() const { return player_; }
    void setPlayer(const Ref<AVPlayer>& player);

    // What the controls do.
    /// Pauses, or plays; at the end from the beginning.
    void pressPlay();
    void pressMute();
    /// Pauses and dismisses the controller.
    void pressDone();
    /// The video stands still while the scrubber is dragged, and follows it.
    void scrubbingBegan();
    void scrubberMoved();
    void scrubbingEnded();

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidDisappear(bool animated) override;
    bool keyDown(std::string_view name) override;

protected:
    Ref<UIView> loadView() override;
    PlayerView& playerView();

private:
    void playerChanged(AVPlayer& player) override;
    void observe(bool observes);
    void skip(double seconds);

    Ref<AVPlayer> player_;
    bool isShown_ = false, isObserving_ = false, playsAfterScrubbing_ = false;
};

}  // namespace flarebox
