#include <Networking/WorkerThread.h>

#include <Foundation/Immortal.h>
#include <Foundation/Shutdown.h>

#include <pthread.h>

#include <utility>

namespace flarebox {

std::shared_ptr<WorkerThread> WorkerThread::shared() {
    static detail::Immortal<std::shared_ptr<WorkerThread>> worker;
    if (!*worker) {
        *worker = std::make_shared<WorkerThread>();
        Shutdown::addHandler([] { std::exchange(*worker, nullptr)->stop(); });
    }
    return *worker;
}

WorkerThread::WorkerThread() : thread_([this] { run(); }) {}

WorkerThread::~WorkerThread() {
    stop();
}

void WorkerThread::async(Work work) {
    std::unique_lock lock(mutex_);
    if (stopping_) {
        lock.unlock();  // what the work holds is let go of without the lock
        return;
    }
    pending_.push_back(std::move(work));
    changed_.notify_one();
}

void WorkerThread::stop() {
    std::deque<Work> dropped;
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
        dropped.swap(pending_);
        changed_.notify_one();
    }
    if (thread_.joinable()) thread_.join();
}

void WorkerThread::run() {
    pthread_setname_np(pthread_self(), "flarebox-decode");
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return stopping_ || !pending_.empty(); });
        if (stopping_) return;
        Work work = std::move(pending_.front());
        pending_.pop_front();
        lock.unlock();
        work();
        work = nullptr;
        lock.lock();
    }
}

}  // namespace flarebox
