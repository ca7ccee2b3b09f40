#include <Networking/Backend/Epoll/EventSet.h>

#include <Foundation/Clock.h>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace flarebox {

namespace {

constexpr std::int64_t second = 1000000000;
constexpr double longestDelay = 1e9;

}  // namespace

EventSet::EventSet()
    : events_(epoll_create1(EPOLL_CLOEXEC)),
      alarm_(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)),
      bell_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    watch(alarm_, EPOLLIN);
    watch(bell_, EPOLLIN);
}

EventSet::~EventSet() {
    for (const int descriptor : {bell_, alarm_, events_}) {
        if (descriptor >= 0) close(descriptor);
    }
}

void EventSet::watch(int descriptor, std::uint32_t events) {
    epoll_event event = {};
    event.events = events;
    event.data.fd = descriptor;
    if (epoll_ctl(events_, EPOLL_CTL_MOD, descriptor, &event) != 0)
        epoll_ctl(events_, EPOLL_CTL_ADD, descriptor, &event);
}

void EventSet::forget(int descriptor) {
    epoll_ctl(events_, EPOLL_CTL_DEL, descriptor, nullptr);
}

void EventSet::wake() {
    eventfd_write(bell_, 1);
}

void EventSet::wakeBy(double uptime) {
    const double now = Clock::real().uptime();
    if (alarmTime_ <= now) alarmTime_ = never;
    if (!(uptime < alarmTime_)) return;
    alarmTime_ = uptime;
    // An alarm at zero would be none.
    const auto delay = static_cast<std::int64_t>(std::clamp(uptime - now, 0.0, longestDelay) * second) + 1;
    itimerspec setting = {};
    setting.it_value.tv_sec = delay / second;
    setting.it_value.tv_nsec = delay % second;
    timerfd_settime(alarm_, 0, &setting, nullptr);
}

const std::vector<EventSet::Event>& EventSet::collect(int milliseconds) {
    std::array<epoll_event, 64> events;
    const int count = epoll_wait(events_, events.data(), static_cast<int>(events.size()), milliseconds);
    happened_.clear();
    for (int index = 0; index < count; ++index) {
        const int descriptor = events[static_cast<std::size_t>(index)].data.fd;
        std::uint64_t ticks = 0;
        if (descriptor == bell_ || descriptor == alarm_)
            static_cast<void>(!read(descriptor, &ticks, sizeof ticks));
        else
            happened_.push_back({descriptor, events[static_cast<std::size_t>(index)].events});
    }
    return happened_;
}

}  // namespace flarebox
