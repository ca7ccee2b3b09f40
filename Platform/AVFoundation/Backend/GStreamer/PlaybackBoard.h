#pragma once

#include <AVFoundation/VideoPipeline.h>
#include <Foundation/MainQueue.h>

#include <functional>
#include <memory>
#include <mutex>

namespace flarebox {

/// Where the threads of a playback write how it stands, for the main thread to read without waiting.
class PlaybackBoard : public std::enable_shared_from_this<PlaybackBoard> {
public:
    explicit PlaybackBoard(std::function<void()> changed) : changed_(std::move(changed)) {}

    /// Changes the state by `change`, which has to be short, and announces that on the main queue. Any thread.
    template <class Change>
    void update(const Change& change) {
        {
            const std::lock_guard lock(mutex_);
            change(state_);
            if (isAnnounced_) return;
            isAnnounced_ = true;
        }
        MainQueue::shared().async([self = shared_from_this()] { self->announce(); });
    }
    VideoState state() const {
        const std::lock_guard lock(mutex_);
        return state_;
    }
    /// Nothing is announced any more. Main thread.
    void close() { changed_ = nullptr; }

private:
    void announce() {
        {
            const std::lock_guard lock(mutex_);
            isAnnounced_ = false;
        }
        if (const auto changed = changed_) changed();
    }

    mutable std::mutex mutex_;
    VideoState state_;
    bool isAnnounced_ = false;
    /// Main thread.
    std::function<void()> changed_;
};

}  // namespace flarebox
