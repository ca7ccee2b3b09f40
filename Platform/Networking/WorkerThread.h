#pragma once

#include <Foundation/Thread.h>
#include <Foundation/WorkQueue.h>

#include <memory>

namespace flarebox {

/// A thread that decodes answers, one after the other, so that neither the main thread nor the transfers wait for it.
/// Where the system gives no thread they have to: the work is done where it comes up.
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
    void async(Work work);
    /// Joins the thread. Main thread.
    void stop();

private:
    WorkQueue queue_;
    Thread thread_;
    const bool isWorking_;
};

}  // namespace flarebox
