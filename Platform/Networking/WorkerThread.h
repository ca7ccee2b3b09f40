#pragma once

#include <Foundation/WorkQueue.h>

#include <memory>
#include <thread>

namespace flarebox {

/// A thread that decodes answers, one after the other, so that neither the main thread nor the transfers wait for it.
class WorkerThread {
public:
    using Work = WorkQueue::Work;

    /// The shared worker, started if need be; Shutdown::run() joins it. Main thread.
    static std::shared_ptr<WorkerThread> shared();

    WorkerThread();
    /// Waits for the work under way and drops what has not begun.
    ~WorkerThread();
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    /// Any thread. After `stop` the work is dropped.
    void async(Work work) { queue_.add(std::move(work)); }
    /// Joins the thread. Main thread.
    void stop();

private:
    void run();

    WorkQueue queue_;
    std::thread thread_;
};

}  // namespace flarebox
