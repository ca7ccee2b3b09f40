#pragma once

#include <Foundation/Export.h>

#include <atomic>

namespace flarebox {

/// The one source of time for timers, delays, animations and dates. Reading is safe on any thread, moving and
/// installing belong to the main thread.
class FLAREBOX_EXPORT Clock {
public:
    virtual ~Clock() = default;
    /// Seconds since an arbitrary moment; never goes back.
    virtual double uptime() const = 0;
    /// Seconds since 1970-01-01 00:00:00 UTC; may jump when the machine's clock is set.
    virtual double timeSince1970() const = 0;

    /// The clock in force; the machine's own until another is installed.
    static Clock& current();
    /// Installs a clock, or with null the machine's own again. The clock must outlive its use.
    /// Work already waiting on the main queue keeps the delay that it has left; animations under way keep the start
    /// that they had on the former clock, so it is to be installed before the first tab, or while nothing moves.
    static void setCurrent(Clock* clock);
    static Clock& real();  ///< the machine's own, whatever is installed
};

/// A clock that stands still until it is moved. Starts at 2026-01-01 00:00:00 UTC.
/// One that is destroyed while it is in force gives way to the machine's clock.
class FLAREBOX_EXPORT VirtualClock : public Clock {
public:
    VirtualClock() = default;
    ~VirtualClock() override;
    VirtualClock(const VirtualClock&) = delete;
    VirtualClock& operator=(const VirtualClock&) = delete;

    double uptime() const override { return uptime_; }
    double timeSince1970() const override { return timeSince1970_; }
    /// Moves both readings forward; a negative or non-finite number is ignored.
    void advance(double seconds);
    /// Moves both readings forward until `uptime()` reads exactly this; an earlier moment is ignored.
    void advanceTo(double uptime);
    /// Sets the wall clock, which alone may go back.
    void setTimeSince1970(double seconds) { timeSince1970_ = seconds; }

private:
    std::atomic<double> uptime_ = 0;
    std::atomic<double> timeSince1970_ = 1767225600;
};

}  // namespace flarebox
