#include <Foundation/WorkQueue.h>

#include <utility>

namespace flarebox {

void WorkQueue::add(Work work) {
    std::unique_lock lock(mutex_);
    if (isStopped_) {
        lock.unlock();  // what the work holds is let go of without the lock
        return;
    }
    pending_.push_back(std::move(work));
    changed_.notify_one();
}

void WorkQueue::stop() {
    std::deque<Work> dropped;
    std::lock_guard lock(mutex_);
    isStopped_ = true;
    dropped.swap(pending_);
    changed_.notify_one();
}

bool WorkQueue::isStopped() {
    std::lock_guard lock(mutex_);
    return isStopped_;
}

WorkQueue::Turn WorkQueue::runNext(std::optional<std::chrono::milliseconds> patience) {
    std::unique_lock lock(mutex_);
    const auto hasNews = [this] { return isStopped_ || !pending_.empty(); };
    if (!patience)
        changed_.wait(lock, hasNews);
    else if (!changed_.wait_for(lock, *patience, hasNews))
        return Turn::TimedOut;
    if (isStopped_) return Turn::Stopped;
    const Work work = std::move(pending_.front());
    pending_.pop_front();
    lock.unlock();
    work();
    return Turn::Worked;
}

}  // namespace flarebox
