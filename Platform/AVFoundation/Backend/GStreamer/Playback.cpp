#include "Playback.h"

#include <Foundation/Clock.h>
#include <Foundation/NSError.h>
#include <Foundation/Thread.h>
#include <gst/gst.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "LibraryOpening.h"
#include "PlaybackFailure.h"
#include "Playbin.h"
#include "VideoThread.h"

namespace flarebox {
namespace {

double now() {
    return Clock::real().uptime();
}

/// What the library starts and opens for one video. It ends the process when it is refused some of them.
constexpr int threadsOfOne = 24, descriptorsOfOne = 32;

/// Seconds that the library gets to make something of a file that has arrived as a whole.
constexpr double longestThought = 12;

bool isOfInterest(GstMessage& message) {
    switch (GST_MESSAGE_TYPE(&message)) {
        case GST_MESSAGE_ERROR:
        case GST_MESSAGE_EOS:
        case GST_MESSAGE_ASYNC_DONE:
        case GST_MESSAGE_BUFFERING:
        case GST_MESSAGE_DURATION_CHANGED:
        case GST_MESSAGE_CLOCK_LOST:
        case GST_MESSAGE_LATENCY:
            return true;
        default:
            return false;
    }
}

}  // namespace

Playback::Playback(VideoThread& thread, std::shared_ptr<PlaybackBoard> board, std::string url, VideoOptions options)
    : thread_(thread), board_(std::move(board)), url_(std::move(url)), options_(std::move(options)) {}

Playback::~Playback() = default;

void Playback::open() {
    thread_.add(shared_from_this());
    start();
}

void Playback::start() {
    ++pipeline_;
    if (const std::string lack = lackOf(threadsOfOne, descriptorsOfOne); !lack.empty())
        return fail({NSURLErrorUnknown, lack});
    if (openLibrary()) playbin_ = makePlaybin(url_, options_, *this);
    if (!playbin_) return fail({NSURLErrorUnknown, "This machine lacks what is needed for playing videos."});
    lastProgress_ = now();
    gst_element_set_state(playbin_, GST_STATE_PAUSED);
}

bool Playback::openLibrary() const {
    using State = LibraryOpening::State;
    constexpr std::chrono::milliseconds step(5);
    State state = LibraryOpening::shared().waitFor(step);
    while (state == State::Opening && !thread_.isStopping()) state = LibraryOpening::shared().waitFor(step);
    return state == State::Open;
}

void Playback::close() {
    if (!playbin_) return;
    destroyPlaybin(*std::exchange(playbin_, nullptr), *this);
}

void Playback::setPlaying(bool playing) {
    wantsPlaying_ = playing && !hasEnded_;
    applyPlaying();
}

void Playback::setMuted(bool muted) {
    if (playbin_) flarebox::setMuted(*playbin_, muted);
}

void Playback::seek(std::uint64_t number, double seconds) {
    if (!playbin_) return;
    const Seek seek{.number = number, .seconds = seconds};
    if (isReady_ && !runningSeek_) return startSeek(seek);
    nextSeek_ = seek;
    publish();
}

void Playback::startSeek(const Seek& seek) {
    hasEnded_ = false;
    runningSeek_ = seek;
    runningSeek_->seconds = std::clamp(seek.seconds, 0.0, duration_ > 0 ? duration_ : seek.seconds);
    if (!carryOutSeek()) return arrived();
    publish();
}

bool Playback::carryOutSeek() {
    lastProgress_ = now();
    const auto flags = static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE);
    const auto target = static_cast<gint64>(runningSeek_->seconds * GST_SECOND);
    return gst_element_seek_simple(playbin_, GST_FORMAT_TIME, flags, target);
}

bool Playback::seekFurtherBack() {
    if (!runningSeek_ || nextSeek_ || hasFrame_ || !(runningSeek_->seconds > 0)) return false;
    runningSeek_->seconds = std::max(0.0, runningSeek_->seconds - runningSeek_->stepBack);
    runningSeek_->stepBack *= 4;
    return carryOutSeek();
}

bool Playback::isWaiting() const {
    return playbin_ && (!isReady_ || isBuffering_ || runningSeek_);
}

void Playback::watch() {
    if (!isWaiting()) return;
    const double waited = now() - lastProgress_;
    if (hasArrived_ && waited > std::min(longestThought, options_.stallTimeout)) return fail(notAVideo());
    if (waited > options_.stallTimeout) fail({NSURLErrorTimedOut, "The server of the video does not answer."});
}

void Playback::flushed() {
    hasFrame_ = false;
    ++flushes_;
}

void Playback::frameArrived(std::shared_ptr<const VideoFrame> frame) {
    if (!frame) return;
    lastProgress_ = now();
    hasFrame_ = true;
    board_->update([&](VideoState& state) { state.frame = std::move(frame); });
}

void Playback::bytesArrived() {
    lastProgress_ = now();
    hasArrived_ = false;
}

void Playback::bytesEnded() {
    hasArrived_ = true;
}

void Playback::tooLarge() {
    thread_.async([self = shared_from_this()] {
        self->fail({NSURLErrorCannotDecodeContentData, "The pictures of this video are too large."});
    });
}

void Playback::messageArrived(GstMessage* message) {
    const std::shared_ptr<GstMessage> owned(message, gst_message_unref);
    if (!isOfInterest(*message) && !isMissingPlugin(*message)) return;
    const Moment posted{pipeline_, flushes_};
    thread_.async([self = shared_from_this(), owned, posted] { self->handle(*owned, posted); });
}

void Playback::handle(GstMessage& message, Moment posted) {
    if (!playbin_ || posted.pipeline != pipeline_) return;
    const bool isOld = posted.flushes != flushes_;
    switch (GST_MESSAGE_TYPE(&message)) {
        case GST_MESSAGE_ERROR:
            return failed(message);
        case GST_MESSAGE_EOS:
            return isOld ? void() : reachedEnd();
        case GST_MESSAGE_ASYNC_DONE:
            return isOld ? void() : arrived();
        case GST_MESSAGE_DURATION_CHANGED:
            askDuration();
            return publish();
        case GST_MESSAGE_BUFFERING: {
            int percent = 0;
            gst_message_parse_buffering(&message, &percent);
            return buffered(percent);
        }
        case GST_MESSAGE_CLOCK_LOST:
            gst_element_set_state(playbin_, GST_STATE_PAUSED);
            isPlaying_ = false;
            return applyPlaying();
        case GST_MESSAGE_LATENCY:
            gst_bin_recalculate_latency(GST_BIN(playbin_));
            return;
        default:
            // Whether that matters shows when everything else has arrived.
            lacksDecoder_ = lacksDecoder_ || isAboutMedia(message);
            return;
    }
}

void Playback::failed(GstMessage& message) {
    if (options_.hasSound && isAboutSoundOutput(message)) return loseSound();
    fail(failureOfMessage(message, lacksDecoder_));
}

void Playback::loseSound() {
    gint64 position = 0;
    gst_element_query_position(playbin_, GST_FORMAT_TIME, &position);
    if (runningSeek_ && !nextSeek_) nextSeek_ = runningSeek_;
    if (!nextSeek_) nextSeek_ = Seek{.number = lastSeek_, .seconds = static_cast<double>(position) / GST_SECOND};
    close();
    options_.hasSound = false;
    runningSeek_.reset();
    isReady_ = isPlaying_ = isBuffering_ = false;
    hasFrame_ = false;
    start();
    publish();
}

void Playback::arrived() {
    if (!isReady_) becameReady();
    if (!playbin_ || seekFurtherBack()) return;
    if (runningSeek_) lastSeek_ = std::exchange(runningSeek_, std::nullopt)->number;
    if (nextSeek_) return startSeek(*std::exchange(nextSeek_, std::nullopt));
    applyPlaying();
    publish();
}

void Playback::becameReady() {
    if (!hasFrame_) return fail({NSURLErrorCannotDecodeContentData, "This machine cannot show this kind of video."});
    isReady_ = true;
    askDuration();
}

void Playback::askDuration() {
    gint64 duration = 0;
    if (gst_element_query_duration(playbin_, GST_FORMAT_TIME, &duration) && duration > 0)
        duration_ = static_cast<double>(duration) / GST_SECOND;
}

void Playback::reachedEnd() {
    if (runningSeek_ || nextSeek_) return;
    hasEnded_ = true;
    wantsPlaying_ = false;
    applyPlaying();
    publish();
}

void Playback::buffered(int percent) {
    if (percent != bufferedPercent_) lastProgress_ = now();
    bufferedPercent_ = percent;
    isBuffering_ = percent < 100;
    applyPlaying();
    publish();
}

void Playback::applyPlaying() {
    const bool plays = wantsPlaying_ && isReady_ && !isBuffering_;
    if (!playbin_ || plays == isPlaying_) return;
    isPlaying_ = plays;
    gst_element_set_state(playbin_, plays ? GST_STATE_PLAYING : GST_STATE_PAUSED);
}

void Playback::publish() {
    board_->update([this](VideoState& state) {
        state.duration = duration_;
        state.isReady = isReady_;
        state.isWaiting = isWaiting();
        state.hasEnded = hasEnded_;
        state.lastSeek = lastSeek_;
    });
}

void Playback::fail(const VideoFailure& failure) {
    close();
    board_->update([&](VideoState& state) {
        state.isWaiting = false;
        if (!state.failure) state.failure = failure;
    });
}

}  // namespace flarebox
