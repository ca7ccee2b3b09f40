#pragma once

#include <AVFoundation/VideoPipeline.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "DownloadBuffers.h"
#include "PlaybackBoard.h"

typedef struct _GstElement GstElement;
typedef struct _GstMessage GstMessage;

namespace flarebox {

class VideoThread;

/// One video in the library's hands. Belongs to the video thread, except for what says otherwise.
class Playback : public std::enable_shared_from_this<Playback> {
public:
    Playback(VideoThread& thread, std::shared_ptr<PlaybackBoard> board, std::string url, VideoOptions options);
    /// After `close`, or without ever having been opened. Any thread.
    ~Playback();
    Playback(const Playback&) = delete;
    Playback& operator=(const Playback&) = delete;

    void open();
    void setPlaying(bool playing);
    void seek(std::uint64_t number, double seconds);
    void setMuted(bool muted);
    /// Ends every thread of the library that works for this video. More calls do nothing.
    void close();

    /// Whether something has to arrive before anything goes on.
    bool isWaiting() const;
    /// Gives up when nothing has arrived for too long.
    void watch();

    // Called by threads of the library.
    const VideoOptions& options() const { return options_; }
    DownloadBuffers& downloadBuffers() { return downloadBuffers_; }
    /// A seek has thrown away what was on its way: what arrives from now on is from after it.
    void flushed();
    /// Null for one that cannot be shown.
    void frameArrived(std::shared_ptr<const VideoFrame> frame);
    void bytesArrived();
    /// The server has sent all that it was asked for.
    void bytesEnded();
    /// Takes the message over.
    void messageArrived(GstMessage* message);
    void tooLarge();

private:
    struct Seek {
        std::uint64_t number = 0;
        double seconds = 0;
        /// By how much to seek earlier where there is no picture.
        double stepBack = 0.1;
    };

    void start();
    /// False when that fails, or the thread stops first.
    bool openLibrary() const;
    /// When a message was posted, by the counts of what makes it an old one.
    struct Moment {
        unsigned pipeline, flushes;
    };
    void handle(GstMessage& message, Moment posted);
    void failed(GstMessage& message);
    /// Goes on, silently, from where it is.
    void loseSound();
    /// What was asked for last, loading or seeking, is done: the frame is there.
    void arrived();
    void becameReady();
    void startSeek(const Seek& seek);
    bool carryOutSeek();
    /// Where a seek has found no picture, at the very end or where only the sound goes on. Whether it did.
    bool seekFurtherBack();
    void reachedEnd();
    void buffered(int percent);
    void fail(const VideoFailure& failure);
    /// Has the library play or pause, as is wanted and possible now.
    void applyPlaying();
    void publish();
    void askDuration();

    VideoThread& thread_;
    const std::shared_ptr<PlaybackBoard> board_;
    const std::string url_;
    VideoOptions options_;

    GstElement* playbin_ = nullptr;
    bool wantsPlaying_ = false, isPlaying_ = false, isReady_ = false, isBuffering_ = false, hasEnded_ = false,
         lacksDecoder_ = false;
    double duration_ = 0;
    std::uint64_t lastSeek_ = 0;
    /// Under way, and what is to follow it.
    std::optional<Seek> runningSeek_, nextSeek_;
    int bufferedPercent_ = 0;

    // Shared with threads of the library.
    DownloadBuffers downloadBuffers_;
    std::atomic<double> lastProgress_ = 0;
    std::atomic<bool> hasArrived_ = false;
    /// Since the last seek.
    std::atomic<bool> hasFrame_ = false;
    /// How many seeks have thrown away what was on its way; tells a message from before a seek from one after it.
    std::atomic<unsigned> flushes_ = 0;
    std::atomic<unsigned> pipeline_ = 0;
};

}  // namespace flarebox
