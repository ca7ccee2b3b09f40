#include <Foundation/MainQueue.h>

#include <Foundation/Clock.h>
#include <Foundation/Immortal.h>
#include <Foundation/LogSink.h>
#include <Foundation/TurnMeter.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <thread>
#include <utility>

namespace flarebox {

namespace {

constexpr int maximumTurnsAtOneMoment = 1000;
constexpr int maximumMomentsOfOneAdvance = 1000000;

std::atomic<int> activities = 0;

thread_local constinit MainQueue::Batch* batch = nullptr;

// Static initialisation runs on the process's first thread.
std::atomic<std::thread::id> mainThread = std::this_thread::get_id();
std::atomic<bool> mainThreadClaimed = false;

template <class T>
class Restore {
public:
    explicit Restore(T& variable) : variable_(variable), value_(variable) {}
    ~Restore() { variable_ = value_; }
    Restore(const Restore&) = delete;
    Restore& operator=(const Restore&) = delete;

private:
    T& variable_;
    T value_;
};

}  // namespace

MainQueue& MainQueue::shared() {
    static detail::Immortal<MainQueue> queue;
    return *queue;
}

MainQueue::Token MainQueue::async(Work work) {
    return after(0, std::move(work));
}

MainQueue::Token MainQueue::after(double delay, Work work) {
    return at(Clock::current().uptime() + (delay > 0 ? delay : 0), std::move(work));
}

MainQueue::Token MainQueue::at(double dueTime, Work work) {
    if (std::isnan(dueTime)) dueTime = 0;
    const bool fromElsewhere = !isMainThread();
    const bool isDue = fromElsewhere && dueTime <= Clock::current().uptime();
    Token token;
    bool wakes;
    {
        std::lock_guard lock(mutex_);
        token = nextToken_++;
        pending_.emplace(Key{dueTime, token}, std::move(work));
        wakes = fromElsewhere && !wakeUpCalled_;
        if (wakes) wakeUpCalled_ = isDue;
    }
    if (wakes) wake();
    return token;
}

MainQueue::Token MainQueue::again(double dueTime) {
    std::lock_guard lock(mutex_);
    again_ = Key{std::isnan(dueTime) ? 0 : dueTime, nextToken_++};
    return again_->token;
}

void MainQueue::wake() {
    if (batch) {
        batch->wakes_ = true;
        return;
    }
    std::lock_guard lock(wakeUpMutex_);
    if (wakeUp_) wakeUp_();
}

void MainQueue::setWakeUp(std::function<void()> wakeUp) {
    std::lock_guard lock(wakeUpMutex_);
    wakeUp_ = std::move(wakeUp);
    std::lock_guard queueLock(mutex_);
    wakeUpCalled_ = false;
}

void MainQueue::cancel(Token token) {
    Pending::node_type cancelled;  // destroyed after the lock: what the work holds may use the queue when it ends
    std::lock_guard lock(mutex_);
    if (again_ && again_->token == token) again_.reset();
    for (auto entry = pending_.begin(); entry != pending_.end(); ++entry) {
        if (entry->first.token != token) continue;
        cancelled = pending_.extract(entry);
        return;
    }
}

MainQueue::Pending::node_type MainQueue::takeDue(double now, Token end) {
    std::lock_guard lock(mutex_);
    for (auto entry = pending_.begin(); entry != pending_.end() && entry->first.dueTime <= now; ++entry) {
        if (entry->first.token < end) return pending_.extract(entry);
    }
    return {};
}

void MainQueue::runWork(Pending::node_type& entry) {
    TurnMeter::Part part("queued callbacks");
    // Work may run the queue, and may throw.
    const Restore outer(again_);
    again_.reset();
    struct PutBack {
        ~PutBack() {
            if (!queue.again_) return;
            std::lock_guard lock(queue.mutex_);
            entry.key() = *queue.again_;
            queue.pending_.insert(std::move(entry));
        }
        MainQueue& queue;
        Pending::node_type& entry;
    };
    const PutBack putBack{*this, entry};
    if (entry.mapped()) entry.mapped()();
}

bool MainQueue::run(double budget) {
    if (!mainThreadClaimed) claimMainThread();
    Restore restore(currentDueTime_);
    const double now = Clock::current().uptime();
    const double start = Clock::real().uptime();
    Token end;
    {
        std::lock_guard lock(mutex_);
        end = nextToken_;
        wakeUpCalled_ = false;
    }
    bool ran = false;
    while (auto entry = takeDue(now, end)) {
        currentDueTime_ = entry.key().dueTime;
        runWork(entry);
        ran = true;
        if (Clock::real().uptime() - start >= budget) break;
    }
    return ran;
}

void MainQueue::runUntilQuiet() {
    for (int turn = 0; turn < maximumTurnsAtOneMoment && run(); ++turn) {
    }
}

void MainQueue::advance(VirtualClock& clock, double seconds) {
    MainQueue& queue = shared();
    const double end = clock.uptime() + (seconds > 0 && std::isfinite(seconds) ? seconds : 0);
    for (int moment = 0; moment < maximumMomentsOfOneAdvance && &Clock::current() == &clock; ++moment) {
        queue.runUntilQuiet();
        auto next = queue.firstDueTimeAfter(clock.uptime());
        if (!next || *next > end) break;
        clock.advanceTo(*next);
    }
    clock.advanceTo(end);
    queue.runUntilQuiet();
}

bool MainQueue::hasDueWork() const {
    auto next = nextDueTime();
    return next && *next <= Clock::current().uptime();
}

std::optional<double> MainQueue::nextDueTime() const {
    std::lock_guard lock(mutex_);
    if (pending_.empty()) return std::nullopt;
    return pending_.begin()->first.dueTime;
}

std::optional<double> MainQueue::firstDueTimeAfter(double moment) const {
    std::lock_guard lock(mutex_);
    auto entry = pending_.upper_bound(Key{moment, std::numeric_limits<Token>::max()});
    if (entry == pending_.end()) return std::nullopt;
    return entry->first.dueTime;
}

bool MainQueue::isIdle() const {
    // In this order: what ends its activity has posted its work before.
    return activities.load(std::memory_order_acquire) == 0 && !hasDueWork();
}

void MainQueue::removeAll() {
    Pending dropped;  // destroyed after the lock
    std::lock_guard lock(mutex_);
    dropped.swap(pending_);
    again_.reset();
}

void MainQueue::shiftDueTimes(double seconds) {
    std::lock_guard lock(mutex_);
    Pending shifted;
    while (!pending_.empty()) {
        auto entry = pending_.extract(pending_.begin());
        entry.key().dueTime += seconds;
        shifted.insert(std::move(entry));
    }
    pending_.swap(shifted);
    if (again_) again_->dueTime += seconds;
}

MainQueue::Batch::Batch() : outer_(std::exchange(batch, this)) {}

MainQueue::Batch::~Batch() {
    batch = outer_;
    if (wakes_) shared().wake();
}

MainQueue::Activity::Activity() {
    activities.fetch_add(1, std::memory_order_relaxed);
}

MainQueue::Activity::~Activity() {
    activities.fetch_sub(1, std::memory_order_release);
}

void dispatch_async_main(MainQueue::Work work) {
    MainQueue::shared().async(std::move(work));
}

void dispatch_after_main(double seconds, MainQueue::Work work) {
    MainQueue::shared().after(seconds, std::move(work));
}

void claimMainThread() {
    mainThread = std::this_thread::get_id();
    mainThreadClaimed = true;
}

bool isMainThread() {
    return mainThread.load(std::memory_order_relaxed) == std::this_thread::get_id();
}

bool requireMainThread(std::string_view call) {
    if (isMainThread() || !mainThreadClaimed) return true;
    LogSink::write(LogLevelError,
                   std::string(call) + " does nothing: it was called from another thread than the main one");
    return false;
}

}  // namespace flarebox
