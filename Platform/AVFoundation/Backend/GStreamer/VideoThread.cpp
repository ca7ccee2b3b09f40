#include "VideoThread.h"

#include <Foundation/Immortal.h>
#include <Foundation/Shutdown.h>

#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "Playback.h"

namespace flarebox {
namespace {

/// How often playbacks that wait for something look whether they have waited too long.
constexpr std::chrono::milliseconds watchInterval{100};

}  // namespace

std::shared_ptr<VideoThread> VideoThread::shared() {
    static detail::Immortal<std::shared_ptr<VideoThread>> thread;
    if (!*thread) {
        *thread = std::make_shared<VideoThread>();
        Shutdown::addHandler([] { std::exchange(*thread, nullptr)->stop(); });
    }
    return *thread;
}

VideoThread::VideoThread() : thread_([this] { run(); }) {}

VideoThread::~VideoThread() {
    stop();
}

void VideoThread::stop() {
    queue_.stop();
    if (thread_.joinable()) thread_.join();
}

void VideoThread::add(std::shared_ptr<Playback> playback) {
    playbacks_.push_back(std::move(playback));
}

void VideoThread::remove(const std::shared_ptr<Playback>& playback) {
    std::erase(playbacks_, playback);
}

void VideoThread::run() {
    using Turn = WorkQueue::Turn;
    pthread_setname_np(pthread_self(), "flarebox-video");
    while (true) {
        const Turn turn = hasWaitingPlayback() ? queue_.runNext(watchInterval) : queue_.runNext();
        if (turn == Turn::Stopped) break;
        if (turn == Turn::TimedOut) watchPlaybacks();
    }
    for (const auto& playback : playbacks_) playback->close();
    playbacks_.clear();
}

bool VideoThread::hasWaitingPlayback() const {
    return std::ranges::any_of(playbacks_, [](const auto& playback) { return playback->isWaiting(); });
}

void VideoThread::watchPlaybacks() {
    for (const auto& playback : playbacks_) playback->watch();
}

}  // namespace flarebox
