#pragma once

#include <AVFoundation/AVPlayerViewController.h>

#include <functional>

namespace flarebox {

/// The full-screen player, which tells when it comes and goes. Main thread.
class VideoPlayerViewController : public AVPlayerViewController {
    FLAREBOX_CLASS(VideoPlayerViewController)
public:
    /// Both may be null.
    void setWillAppear(std::function<void()> callback) { willAppear_ = std::move(callback); }
    void setWillDismiss(std::function<void()> callback) { willDismiss_ = std::move(callback); }

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

private:
    std::function<void()> willAppear_, willDismiss_;
};

}  // namespace flarebox
