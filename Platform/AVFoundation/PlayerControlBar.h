#pragma once

#include <AVFoundation/PlayerScrubber.h>
#include <UIKit/UIButton.h>
#include <UIKit/UILabel.h>

#include <string>

namespace flarebox {

class AVPlayer;

/// A moment of a video as people read it: "0:07", "12:30", "1:02:03". Negative and non-finite ones are "0:00".
std::string playbackTimeText(double seconds);

/// What stands at the bottom of a player: play or pause, the time, the scrubber, the time left, sound. Main thread.
class PlayerControlBar : public UIView {
    FLAREBOX_CLASS(PlayerControlBar)
public:
    static constexpr CGFloat barHeight = 48;
    /// What a key moves the video by, in seconds.
    static constexpr double arrowStep = 5;

    PlayerControlBar();

    /// Shows how the player stands.
    void show(const AVPlayer& player);

    UIButton& playButton() { return *play_; }
    UIButton& muteButton() { return *mute_; }
    PlayerScrubber& scrubber() { return *scrubber_; }
    const UILabel& elapsedLabel() const { return *elapsed_; }
    const UILabel& remainingLabel() const { return *remaining_; }

    void layoutSubviews() override;
    // What misses a button here was not meant for the video behind.
    void touchesBegan(UITouch&) override {}
    void touchesMoved(UITouch&) override {}
    void touchesEnded(UITouch&) override {}
    void touchesCancelled(UITouch&) override {}

private:
    Ref<UIButton> makeButton(const char* name, const char* icon, const char* selectedIcon, const char* label,
                             const char* selectedLabel);
    Ref<UILabel> makeLabel(const char* name, NSTextAlignment alignment);
    void showTimes(double time, double duration);

    Ref<UIButton> play_, mute_;
    Ref<UILabel> elapsed_, remaining_;
    Ref<PlayerScrubber> scrubber_;
    Ref<UIView> hairline_;
    /// The longest text that a label has to hold, digits as zeroes.
    std::string widestTime_;
};

}  // namespace flarebox
