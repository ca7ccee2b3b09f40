#include <Foundation/Clock.h>

#include <Foundation/Immortal.h>
#include <Foundation/MainQueue.h>

#include <chrono>
#include <cmath>

namespace flarebox {

namespace {

class RealClock : public Clock {
public:
    double uptime() const override {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }
    double timeSince1970() const override {
        return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    }

private:
    // Counting from the start keeps the numbers small, so that sums of seconds lose no precision.
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

std::atomic<Clock*> installed = nullptr;

}  // namespace

Clock& Clock::real() {
    // Threads that end with the process may read it after main.
    static detail::Immortal<RealClock> clock;
    return *clock;
}

Clock& Clock::current() {
    Clock* clock = installed.load(std::memory_order_acquire);
    return clock ? *clock : real();
}

void Clock::setCurrent(Clock* clock) {
    double before = current().uptime();
    installed.store(clock, std::memory_order_release);
    MainQueue::shared().shiftDueTimes(current().uptime() - before);
}

VirtualClock::~VirtualClock() {
    if (&Clock::current() == this) Clock::setCurrent(nullptr);
}

void VirtualClock::advance(double seconds) {
    if (std::isfinite(seconds)) advanceTo(uptime_ + seconds);
}

void VirtualClock::advanceTo(double uptime) {
    double step = uptime - uptime_;
    if (!(step > 0)) return;
    uptime_ = uptime;
    timeSince1970_ = timeSince1970_ + step;
}

}  // namespace flarebox
