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

void VideoThread::async(Work work) {
    std::unique_lock lock(mutex_);
    if (stopping_) {
        lock.unlock();  // what the work holds is let go of without the lock
        return;
    }
    pending_.push_back(std::move(work));
    changed_.notify_one();
}

void VideoThread::stop() {
    std::deque<Work> dropped;
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        dropped.swap(pending_);
        changed_.notify_one();
    }
    if (thread_.joinable()) thread_.join();
}

void VideoThread::add(std::shared_ptr<Playback> playback) {
    playbacks_.push_back(std::move(playback));
}

void VideoThread::remove(const std::shared_ptr<Playback>& playback) {
    std::erase(playbacks_, playback);
}

void VideoThread::run() {
    pthread_setname_np(pthread_self(), "flarebox-video");
    std::unique_lock lock(mutex_);
    while (!stopping_) {
        if (pending_.empty()) {
            const auto hasNews = [this] { return stopping_ || !pending_.empty(); };
            if (!hasWaitingPlayback()) {
                changed_.wait(lock, hasNews);
            } else if (!changed_.wait_for(lock, watchInterval, hasNews)) {
                lock.unlock();
                watchPlaybacks();
                lock.lock();
            }
            continue;
        }
        Work work = std::move(pending_.front());
        pending_.pop_front();
        lock.unlock();
        work();
        work = nullptr;
        lock.lock();
    }
    lock.unlock();
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
