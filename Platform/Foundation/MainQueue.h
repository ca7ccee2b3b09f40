#pragma once

#include <Foundation/Export.h>

#include <compare>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string_view>

namespace flarebox {

class Clock;
class VirtualClock;

namespace detail {
template <class T>
class Immortal;
}

/// The main thread's queue of work. Posting is safe from any thread; the host runs it by one call a frame.
/// Work runs in the order in which it became due, equal times in the order of posting.
class FLAREBOX_EXPORT MainQueue {
public:
    using Work = std::function<void()>;  ///< runs on the main thread, once
    using Token = std::uint64_t;         ///< names posted work; never used twice

    /// The one queue, which lasts as long as the process. Any thread.
    static MainQueue& shared();

    /// Runs the work at the next turn. Any thread.
    Token async(Work work);
    /// Runs the work once `delay` seconds (0 or more) of the clock in force have passed. Any thread.
    Token after(double delay, Work work);
    /// Runs the work once the uptime of the clock in force has reached `dueTime`. Any thread.
    Token at(double dueTime, Work work);
    /// While work runs: runs it once more when the uptime of the clock in force has reached `dueTime`, which allocates
    /// nothing. Main thread.
    Token again(double dueTime);
    /// Takes work back that has not run yet; a token whose work has run is ignored. Main thread.
    void cancel(Token token);

    /// Runs what is due now: work posted before this call, delayed work whose time has come. Work that posts more work
    /// leaves it for the next turn. Stops early, keeping the rest, when `budget` seconds of real time are used up. Main
    /// thread. At least one piece of work runs however small the budget. Returns whether anything ran.
    bool run(double budget = 1e9);
    /// Moves the clock in force forward by `seconds`, stopping at every due time on the way to run what is due there.
    /// Bounded: work that keeps posting without delay is left alone after a thousand turns at one moment. Main thread.
    static void advance(VirtualClock& clock, double seconds);

    /// Whether something would run now, and the clock's uptime at which the next delayed work is due. Main thread.
    bool hasDueWork() const;
    std::optional<double> nextDueTime() const;  ///< none when nothing waits
    /// While work runs: the uptime at which it was due. Main thread.
    double currentDueTime() const { return currentDueTime_; }

    /// Counts something that is under way elsewhere (a transfer, a picture being decoded) and will post work here.
    /// Lets a script or test wait until the process has come to rest. Any thread.
    class Activity {
    public:
        Activity();
        ~Activity();
        Activity(const Activity&) = delete;
        Activity& operator=(const Activity&) = delete;
    };
    /// As long as one lives, posts from its thread do not wake the host; its end does, once, if one would have.
    class Batch {
    public:
        Batch();
        ~Batch();
        Batch(const Batch&) = delete;
        Batch& operator=(const Batch&) = delete;

    private:
        friend class MainQueue;
        Batch* const outer_;
        bool wakes_ = false;
    };
    /// Nothing due, nothing under way.
    bool isIdle() const;

    /// Called, from any thread, when work is posted from another thread: lets a host that sleeps wake up. Once work
    /// that is due has called it, what follows is silent until the next `run`. Null for none. It must return at once
    /// and post nothing. Once this returns, the previous one is not called any more.
    void setWakeUp(std::function<void()> wakeUp);
    /// Drops all pending work without running it. Main thread.
    void removeAll();

private:
    friend class Clock;
    friend class detail::Immortal<MainQueue>;
    struct Key {
        double dueTime;
        Token token;
        auto operator<=>(const Key&) const = default;
    };
    using Pending = std::map<Key, Work>;

    MainQueue() = default;
    ~MainQueue() = default;
    Pending::node_type takeDue(double now, Token end);
    void runWork(Pending::node_type& entry);
    void runUntilQuiet();
    std::optional<double> firstDueTimeAfter(double moment) const;
    void wake();
    /// Keeps what is left of every delay when another clock takes over.
    void shiftDueTimes(double seconds);

    mutable std::mutex mutex_;
    Pending pending_;
    Token nextToken_ = 1;
    /// Whether the host has been told since the last turn that there is something to run.
    bool wakeUpCalled_ = false;
    double currentDueTime_ = 0;
    /// What runs now is to run once more.
    std::optional<Key> again_;
    std::mutex wakeUpMutex_;
    std::function<void()> wakeUp_;
};

/// The main queue under the platform's names.
FLAREBOX_EXPORT void dispatch_async_main(MainQueue::Work work);
FLAREBOX_EXPORT void dispatch_after_main(double seconds, MainQueue::Work work);

/// Makes the caller's thread the main thread, as a host adapter does when it is made. Without one the main thread is
/// the one that first used the main queue's `run`, and the process's first before that.
FLAREBOX_EXPORT void claimMainThread();
/// Any thread.
FLAREBOX_EXPORT bool isMainThread();
/// For a call that only the main thread may make: on another thread, once there is a main thread, the log names the
/// call, which then has to do nothing. Any thread.
FLAREBOX_EXPORT bool requireMainThread(std::string_view call);

}  // namespace flarebox
