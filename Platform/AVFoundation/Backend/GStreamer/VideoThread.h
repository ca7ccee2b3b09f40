#pragma once

#include <Foundation/Thread.h>
#include <Foundation/WorkQueue.h>

#include <memory>
#include <vector>

namespace flarebox {

class Playback;

/// The thread that owns every playback, so that nobody else waits while one is opened, changed or closed.
class VideoThread {
public:
    using Work = WorkQueue::Work;

    /// The shared one, started if need be; Shutdown::run() joins it. Null when the system gives no thread. Main thread.
    static std::shared_ptr<VideoThread> shared();

    VideoThread() = default;
    ~VideoThread();
    VideoThread(const VideoThread&) = delete;
    VideoThread& operator=(const VideoThread&) = delete;

    [[nodiscard]] bool start();
    /// Any thread. After `stop` the work is dropped.
    void async(Work work) { queue_.add(std::move(work)); }
    /// Closes every playback and joins the thread. Main thread.
    void stop();

    // On the thread itself.
    bool isStopping() { return queue_.isStopped(); }
    /// Keeps the playback and has it look at the time now and then, until it is removed.
    void add(std::shared_ptr<Playback> playback);
    void remove(const std::shared_ptr<Playback>& playback);

private:
    void run();
    bool hasWaitingPlayback() const;
    void watchPlaybacks();

    WorkQueue queue_;
    /// Of the thread itself.
    std::vector<std::shared_ptr<Playback>> playbacks_;
    Thread thread_;
};

}  // namespace flarebox
