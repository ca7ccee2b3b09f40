#include "VideoThread.h"

#include <Foundation/Immortal.h>
#include <Foundation/Shutdown.h>

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
    if (*thread) return *thread;
    auto made = std::make_shared<VideoThread>();
    if (!made->start()) return nullptr;
    *thread = std::move(made);
    Shutdown::addHandler([] { std::exchange(*thread, nullptr)->stop(); });
    return *thread;
}

VideoThread::~VideoThread() {
    stop();
}

bool VideoThread::start() {
    return thread_.start("flarebox-video", [this] { run(); });
}

void VideoThread::stop() {
    queue_.stop();
    thread_.join();
}

void VideoThread::add(std::shared_ptr<Playback> playback) {
    playbacks_.push_back(std::move(playback));
}

void VideoThread::remove(const std::shared_ptr<Playback>& playback) {
    std::erase(playbacks_, playback);
}

void VideoThread::run() {
    using Turn = WorkQueue::Turn;
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
