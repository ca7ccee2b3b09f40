#pragma once

#include <functional>
#include <string>
#include <thread>

namespace flarebox {

/// A thread with a name. Unlike the language's own it may fail to start: a system that has no thread left must not end
/// the host. Owned by one thread at a time.
class Thread {
public:
    Thread() = default;
    /// Joins.
    ~Thread() { join(); }
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// `name` has at most 15 bytes. False, with the reason in the log, when the system gives no thread. To be
    /// called while none runs.
    [[nodiscard]] bool start(const char* name, std::function<void()> run);
    /// From the start to `join`, whether or not it has ended by then.
    bool isRunning() const { return thread_.joinable(); }
    /// Waits for its end; does nothing when there is none.
    void join();

private:
    std::thread thread_;
};

/// Why the process could not have so many more threads and descriptors at this moment; empty when it could. For
/// libraries that end the process when they are refused one: they are to be called only after this. Any thread; takes
/// about a millisecond.
std::string lackOf(int threads, int descriptors);

}  // namespace flarebox
