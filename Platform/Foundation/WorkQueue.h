#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>

namespace flarebox {

/// Work that any thread hands to one thread, which does it in the order in which it came.
class WorkQueue {
public:
    using Work = std::function<void()>;

    /// Any thread. After `stop` the work is dropped.
    void add(Work work);
    /// Drops what has not begun, for good. Any thread.
    void stop();
    bool isStopped();

    enum class Turn : std::uint8_t { Worked, TimedOut, Stopped };
    /// On the thread that works: waits for the next piece of work, for `patience` at most if given, and does it.
    Turn runNext(std::optional<std::chrono::milliseconds> patience = {});

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Work> pending_;
    bool isStopped_ = false;
};

}  // namespace flarebox
