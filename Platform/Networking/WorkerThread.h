#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace flarebox {

/// A thread that decodes answers, one after the other, so that neither the main thread nor the transfers wait for it.
class WorkerThread {
public:
    using Work = std::function<void()>;

    /// The shared worker, started if need be; Shutdown::run() joins it. Main thread.
    static std::shared_ptr<WorkerThread> shared();

    WorkerThread();
    /// Waits for the work under way and drops what has not begun.
    ~WorkerThread();
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    /// Any thread. After `stop` the work is dropped.
    void async(Work work);
    /// Joins the thread. Main thread.
    void stop();

private:
    void run();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Work> pending_;
    bool stopping_ = false;
    std::thread thread_;
};

}  // namespace flarebox
