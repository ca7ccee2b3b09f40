#pragma once

#include <cstdint>
#include <limits>
#include <vector>

namespace flarebox {

/// Descriptors that one thread sleeps on while others add to them: a descriptor that is added, or a deadline that is
/// moved, counts at once for a thread that is already asleep.
class EventSet {
public:
    struct Event {
        int descriptor;
        /// EPOLLIN and the like.
        std::uint32_t events;
    };

    EventSet();
    ~EventSet();
    EventSet(const EventSet&) = delete;
    EventSet& operator=(const EventSet&) = delete;

    /// Whether the system gave it the descriptors that it needs itself. Otherwise it never sleeps.
    bool isUsable() const { return events_ >= 0 && alarm_ >= 0 && bell_ >= 0; }
    /// Adds the descriptor, or changes what it is watched for. Any thread.
    void watch(int descriptor, std::uint32_t events);
    /// Any thread. A descriptor that is closed leaves by itself.
    void forget(int descriptor);
    /// Ends a sleep, the next one if nobody sleeps now. Any thread.
    void wake();
    /// Ends a sleep when the real clock's uptime reaches it, at the latest. One thread at a time.
    void wakeBy(double uptime);
    /// Sleeps until something happens, and returns that; nothing when it was woken. One thread.
    const std::vector<Event>& wait() { return collect(-1); }
    /// The same without a sleep.
    const std::vector<Event>& look() { return collect(0); }

private:
    const std::vector<Event>& collect(int milliseconds);

    static constexpr double never = std::numeric_limits<double>::infinity();

    int events_;
    int alarm_;
    int bell_;
    double alarmTime_ = never;
    std::vector<Event> happened_;
};

}  // namespace flarebox
