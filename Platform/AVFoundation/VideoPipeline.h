#pragma once

#include <UIKit/UIView.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace flarebox {

/// One picture of a video. Immutable; may be handed between threads.
struct VideoFrame {
    /// Opaque pixels. Valid as long as the frame.
    UIView::PixelBuffer picture;
    /// Where in the video it stands, in seconds from the beginning.
    double time = 0;
    /// What keeps the pixels.
    std::shared_ptr<const void> memory;
};

/// Why a video cannot be played: a code of NSURLErrorDomain and a text for people.
struct VideoFailure {
    int code = 0;
    std::string text;
};

/// How playback stood at one moment.
struct VideoState {
    /// The latest one; null before the first.
    std::shared_ptr<const VideoFrame> frame;
    /// In seconds; 0 while unknown.
    double duration = 0;
    /// The first frame is there.
    bool isReady = false;
    /// Nothing can be shown before more has arrived.
    bool isWaiting = true;
    /// It played to the end and stopped there.
    bool hasEnded = false;
    /// The number of the last seek that has been carried out; `hasEnded` and `frame` are those after it.
    std::uint64_t lastSeek = 0;
    /// After a failure nothing happens any more.
    std::optional<VideoFailure> failure;
};

/// What holds for one video from its opening on.
struct VideoOptions {
    bool hasSound = true;
    bool isMuted = false;
    /// Seconds without a byte, while bytes are needed, after which the server is given up.
    double stallTimeout = 15;
    /// PEM file of authorities to trust instead of the system's; empty for the system's.
    std::string certificateAuthorityFile;
};

/// A video being loaded and played, paused at its beginning at first. Plays in real time, whatever clock is in force.
/// Nothing here waits: commands are carried out on a thread of the pipeline's. Main thread.
class VideoPipeline {
public:
    /// Whether this build has what it needs for playing videos.
    static bool isSupported();
    /// Starts to load from an http or https address. `changed` is called on the main queue after the state has
    /// changed, several changes together once, and no more after the pipeline's end. Null where it is not supported,
    /// and when the system gives no thread for it.
    static std::unique_ptr<VideoPipeline> open(const std::string& url, const VideoOptions& options,
                                               std::function<void()> changed);
    /// Returns at once; the video is put away in the background.
    virtual ~VideoPipeline() = default;

    virtual VideoState state() const = 0;
    virtual void setPlaying(bool playing) = 0;
    /// To a moment in seconds from the beginning. `number` counts up from 1; of several seeks that wait for one another
    /// only the last is carried out.
    virtual void seek(std::uint64_t number, double seconds) = 0;
    virtual void setMuted(bool muted) = 0;
};

}  // namespace flarebox
