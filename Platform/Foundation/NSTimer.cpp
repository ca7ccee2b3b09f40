#include <Foundation/NSTimer.h>

#include <Foundation/Clock.h>
#include <Foundation/TurnMeter.h>

#include <cmath>
#include <utility>

namespace flarebox {

namespace {

constexpr double shortestInterval = 0.0001;

double nextDueTime(double dueTime, double interval, double now) {
    double next = dueTime + interval * (std::floor((now - dueTime) / interval) + 1);
    return next > now ? next : next + interval;
}

}  // namespace

const ClassInfo& NSTimer::staticClass() {
    static const ClassInfo info("NSTimer", &NSObject::staticClass(), nullptr);
    return info;
}

Ref<NSTimer> NSTimer::scheduledTimer(double interval, NSObject& target, std::string_view selector, Value userInfo,
                                     bool repeats) {
    auto timer = make<NSTimer>();
    timer->target_ = Ref<NSObject>(&target);
    timer->selector_ = selector;
    timer->userInfo_ = std::move(userInfo);
    timer->interval_ = interval > 0 ? interval : shortestInterval;
    timer->repeats_ = repeats;
    timer->schedule(Clock::current().uptime() + timer->interval_);
    return timer;
}

void NSTimer::schedule(double dueTime) {
    token_ = MainQueue::shared().at(dueTime, [self = Ref<NSTimer>(this)] { self->becameDue(); });
}

void NSTimer::becameDue() {
    TurnMeter::Part part("timers");
    MainQueue& queue = MainQueue::shared();
    if (repeats_) token_ = queue.again(nextDueTime(queue.currentDueTime(), interval_, Clock::current().uptime()));
    fire();
}

void NSTimer::fire() {
    if (!isValid()) return;
    // The operation may invalidate the timer and drop every reference to it and to its target.
    Ref<NSTimer> self(this);
    Ref<NSObject> target = target_;
    target->performSelector(selector_, this);
    if (!repeats_) invalidate();
}

void NSTimer::invalidate() {
    if (!isValid()) return;
    Ref<NSTimer> self(this);
    Ref<NSObject> target = std::exchange(target_, nullptr);
    MainQueue::shared().cancel(token_);
}

}  // namespace flarebox
