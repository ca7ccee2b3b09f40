#include <AVFoundation/AVPlayer.h>

#include <Foundation/Immortal.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSNotificationCenter.h>
#include <Networking/NetworkError.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace flarebox {
namespace {

/// The last frame of a whole video begins no earlier than that before the end.
constexpr double longestLastFrame = 0.5;

AVPlayerSettings& currentSettings() {
    static detail::Immortal<AVPlayerSettings> settings;
    return *settings;
}

struct Players {
    std::vector<AVPlayer*> all;
    bool areMuted = false;
};

Players& players() {
    static detail::Immortal<Players> players;
    return *players;
}

Ref<NSError> errorOfAddress(const NSURL& url) {
    const std::string scheme = url.scheme();
    if (scheme != "http" && scheme != "https") return networkError(NSURLErrorUnsupportedURL, url.absoluteString());
    if (url.host().empty()) return networkError(NSURLErrorBadURL, url.absoluteString());
    if (!VideoPipeline::isSupported())
        return networkError(NSURLErrorUnknown, "This build cannot play videos.", url.absoluteString());
    return nullptr;
}

}  // namespace

const ClassInfo& AVPlayer::staticClass() {
    static const ClassInfo info("AVPlayer", &NSObject::staticClass(), nullptr);
    return info;
}

const AVPlayerSettings& AVPlayer::settings() {
    return currentSettings();
}

void AVPlayer::setSettings(const AVPlayerSettings& settings) {
    currentSettings() = settings;
}

Ref<AVPlayer> AVPlayer::playerWithURL(const NSURL& url) {
    return make<AVPlayer>(url);
}

AVPlayer::AVPlayer(const NSURL& url) : item_(make<AVPlayerItem>(url, *this)), error_(errorOfAddress(url)) {
    players().all.push_back(this);
}

AVPlayer::~AVPlayer() {
    std::erase(players().all, this);
}

bool AVPlayer::isEverythingMuted() {
    return players().areMuted;
}

void AVPlayer::setEverythingMuted(bool muted) {
    if (!requireMainThread("AVPlayer::setEverythingMuted")) return;
    players().areMuted = muted;
    for (AVPlayer* player : players().all) player->followMuting();
}

void AVPlayer::followMuting() {
    if (pipeline_) pipeline_->setMuted(isMuted_ || players().areMuted);
}

void AVPlayer::load() {
    if (pipeline_ || error_) return;
    const AVPlayerSettings& settings = currentSettings();
    const VideoOptions options{settings.hasSound, isMuted_ || players().areMuted, settings.stallTimeout,
                               settings.certificateAuthorityFile};
    pipeline_ = VideoPipeline::open(item_->url().absoluteString(), options, [weak = Weak<AVPlayer>(this)] {
        if (const Ref<AVPlayer> player = weak.lock()) player->pipelineChanged();
    });
    if (!pipeline_) {
        error_ =
            networkError(NSURLErrorUnknown, "The system gives no thread for the video.", item_->url().absoluteString());
        return tellObservers();
    }
    countActivity();
}

void AVPlayer::play() {
    if (rate_ > 0 || error_ || hasEnded()) return;
    load();
    if (error_) return;
    rate_ = 1;
    pipeline_->setPlaying(true);
    tellObservers();
}

void AVPlayer::pause() {
    if (!(rate_ > 0)) return;
    rate_ = 0;
    pipeline_->setPlaying(false);
    tellObservers();
}

AVPlayerTimeControlStatus AVPlayer::timeControlStatus() const {
    if (!(rate_ > 0)) return AVPlayerTimeControlStatus::Paused;
    return isWaiting() ? AVPlayerTimeControlStatus::WaitingToPlay : AVPlayerTimeControlStatus::Playing;
}

void AVPlayer::seekToTime(double seconds) {
    if (error_ || !std::isfinite(seconds)) return;
    load();
    if (error_) return;
    soughtTime_ = std::max(seconds, 0.0);
    endIsKnown_ = false;
    pipeline_->seek(++lastSeek_, soughtTime_);
    // It may have come to its end, and stopped there, without this being known here yet.
    pipeline_->setPlaying(rate_ > 0);
    countActivity();
    tellObservers();
}

double AVPlayer::currentTime() const {
    if (isSeeking()) return state_.duration > 0 ? std::min(soughtTime_, state_.duration) : soughtTime_;
    const double time = state_.frame ? state_.frame->time : 0;
    // A video that breaks off says where.
    return hasEnded() && state_.duration - time < longestLastFrame ? state_.duration : time;
}

void AVPlayer::setMuted(bool muted) {
    if (isMuted_ == muted) return;
    isMuted_ = muted;
    followMuting();
    tellObservers();
}

bool AVPlayer::isWaiting() const {
    return pipeline_ && !error_ && (state_.isWaiting || isSeeking());
}

bool AVPlayer::hasEnded() const {
    return state_.hasEnded && !isSeeking();
}

void AVPlayer::pipelineChanged() {
    const Ref<NSObject> keeper = retained();
    state_ = pipeline_->state();
    if (state_.failure && !error_) {
        error_ = networkError(state_.failure->code, state_.failure->text, item_->url().absoluteString());
        rate_ = 0;
    }
    countActivity();
    const bool endIsNew = hasEnded() && !endIsKnown_;
    if (endIsNew) {
        endIsKnown_ = true;
        rate_ = 0;
    }
    tellObservers();
    if (endIsNew)
        NSNotificationCenter::defaultCenter().postNotificationName(AVPlayerItemDidPlayToEndTimeNotification,
                                                                   item_.get());
}

void AVPlayer::addObserver(AVPlayerObserver& observer) {
    observers_.push_back(&observer);
}

void AVPlayer::removeObserver(AVPlayerObserver& observer) {
    std::erase(observers_, &observer);
}

void AVPlayer::tellObservers() {
    const Ref<NSObject> keeper = retained();
    const auto observers = observers_;
    for (AVPlayerObserver* observer : observers) {
        if (std::ranges::find(observers_, observer) != observers_.end()) observer->playerChanged(*this);
    }
}

void AVPlayer::countActivity() {
    const bool isBusy = pipeline_ && !error_ && (!state_.isReady || isSeeking());
    if (isBusy == (activity_ != nullptr)) return;
    activity_ = isBusy ? std::make_unique<MainQueue::Activity>() : nullptr;
}

}  // namespace flarebox
