#include <Foundation/Clock.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSTimer.h>
#include <Foundation/Shutdown.h>
#include <Foundation/Values.h>

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "Tests/Support/Pump.h"

namespace flarebox {
namespace {

/// Counts what it is told to do.
class Counter : public NSObject {
    FLAREBOX_CLASS(Counter)
public:
    ~Counter() override {
        if (whenDestroyed) whenDestroyed();
    }
    void tick(NSTimer* timer) {
        ++ticks;
        if (timer && ticks == stopAfter) timer->invalidate();
    }
    void note() { ++notes; }

    int ticks = 0;
    int notes = 0;
    int stopAfter = -1;
    std::function<void()> whenDestroyed;
};

const ClassInfo& Counter::staticClass() {
    static const Action actions[] = {action<&Counter::tick>("tick:"), action<&Counter::note>("note")};
    static const ClassInfo info("ServicesTimeCounter", &NSObject::staticClass(), nullptr, {.actions = actions});
    return info;
}

class ServicesTime : public ::testing::Test {
protected:
    ServicesTime() {
        MainQueue::shared().removeAll();
        Clock::setCurrent(&clock);
    }
    ~ServicesTime() override {
        MainQueue::shared().removeAll();
        Clock::setCurrent(nullptr);
    }
    void advance(double seconds) { MainQueue::advance(clock, seconds); }

    VirtualClock clock;
    MainQueue& queue = MainQueue::shared();
};

TEST_F(ServicesTime, VirtualClockMovesOnlyForward) {
    const double start = clock.timeSince1970();
    clock.advance(2.5);
    clock.advance(-1);
    clock.advance(std::numeric_limits<double>::quiet_NaN());
    clock.advance(std::numeric_limits<double>::infinity());
    EXPECT_EQ(clock.uptime(), 2.5);
    EXPECT_EQ(clock.timeSince1970(), start + 2.5);
    clock.setTimeSince1970(5);
    clock.advance(1);
    EXPECT_EQ(clock.uptime(), 3.5);
    EXPECT_EQ(NSDate::date().timeIntervalSince1970(), 6);
}

TEST_F(ServicesTime, WorkRunsInTheOrderInWhichItBecameDue) {
    std::string order;
    auto add = [&](char name) { return [&order, name] { order += name; }; };
    queue.after(2, add('e'));
    queue.after(1, add('c'));
    queue.async(add('a'));
    queue.after(1, add('d'));
    queue.after(-3, add('b'));
    EXPECT_EQ(queue.nextDueTime(), 0);
    clock.advance(2);
    queue.async(add('f'));
    EXPECT_TRUE(queue.hasDueWork());
    EXPECT_TRUE(queue.run());
    EXPECT_EQ(order, "abcdef");
    EXPECT_FALSE(queue.run());
    EXPECT_EQ(queue.nextDueTime(), std::nullopt);
}

TEST_F(ServicesTime, WorkPostedByWorkWaitsForTheNextTurn) {
    int runs = 0;
    std::function<void()> again = [&] {
        ++runs;
        queue.async(again);
    };
    queue.async(again);
    for (int turn = 1; turn <= 3; ++turn) {
        queue.run();
        EXPECT_EQ(runs, turn);
    }
}

TEST_F(ServicesTime, BudgetKeepsTheRestInOrder) {
    std::string order;
    for (char name : {'a', 'b', 'c'}) queue.async([&order, name] { order += name; });
    EXPECT_TRUE(queue.run(0));
    EXPECT_EQ(order, "a");
    EXPECT_FALSE(queue.isIdle());
    queue.run();
    EXPECT_EQ(order, "abc");
    EXPECT_TRUE(queue.isIdle());
}

TEST_F(ServicesTime, CancelledAndRemovedWorkIsDestroyedUnrunWithTheQueueUsable) {
    // Work whose end uses the queue must not find it locked.
    struct Nosy {
        std::shared_ptr<int> count;
        ~Nosy() {
            MainQueue::shared().hasDueWork();
            ++*count;
        }
    };
    auto ended = std::make_shared<int>(0);
    bool ran = false;
    auto post = [&] { return queue.async([&ran, nosy = std::make_shared<Nosy>(ended)] { ran = true; }); };
    queue.cancel(post());
    EXPECT_EQ(*ended, 1);
    post();
    queue.removeAll();
    EXPECT_EQ(*ended, 2);
    queue.cancel(12345678);
    queue.run();
    EXPECT_FALSE(ran);
}

TEST_F(ServicesTime, WorkThatThrowsIsGoneAndTheRestStays) {
    bool ran = false;
    queue.async([] { throw std::runtime_error("host's own"); });
    queue.async([&] { ran = true; });
    EXPECT_THROW(queue.run(), std::runtime_error);
    queue.run();
    EXPECT_TRUE(ran);
}

TEST_F(ServicesTime, AnotherClockLeavesTheRestOfEveryDelay) {
    clock.advance(1000);
    bool ran = false;
    queue.after(5, [&] { ran = true; });
    clock.advance(2);
    {
        VirtualClock other;
        Clock::setCurrent(&other);
        MainQueue::advance(other, 2.5);
        EXPECT_FALSE(ran);
        MainQueue::advance(other, 0.5);
        EXPECT_TRUE(ran);
    }
    EXPECT_EQ(&Clock::current(), &Clock::real());
}

TEST_F(ServicesTime, AdvanceStopsAtEveryDueTimeAndIsBounded) {
    std::vector<double> moments;
    std::function<void()> repeat = [&] {
        moments.push_back(clock.uptime());
        queue.after(0.25, repeat);
    };
    queue.after(0.25, repeat);
    std::function<void()> restless = [&] { queue.async(restless); };
    queue.async(restless);
    advance(1.1);
    EXPECT_EQ(moments, (std::vector<double>{0.25, 0.5, 0.75, 1.0}));
    EXPECT_DOUBLE_EQ(clock.uptime(), 1.1);
}

TEST_F(ServicesTime, PostsFromThreadsAllArriveInEachThreadsOrder) {
    constexpr int threadCount = 4, postCount = 500;
    std::atomic<int> wakeUps = 0;
    queue.setWakeUp([&] { ++wakeUps; });
    std::vector<int> next(threadCount, 0);
    bool inOrder = true;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread, activity = std::make_shared<MainQueue::Activity>()]() mutable {
            EXPECT_FALSE(isMainThread());
            for (int number = 0; number < postCount; ++number) {
                auto work = [&, thread, number] { inOrder &= next[static_cast<std::size_t>(thread)]++ == number; };
                if (number % 2)
                    queue.async(work);
                else
                    queue.after(0, work);
            }
            activity.reset();
        });
    }
    EXPECT_TRUE(testing::pumpUntilIdle());
    for (auto& thread : threads) thread.join();
    queue.run();
    queue.setWakeUp(nullptr);
    EXPECT_TRUE(isMainThread());
    EXPECT_TRUE(inOrder);
    EXPECT_EQ(next, std::vector<int>(threadCount, postCount));
    EXPECT_GE(wakeUps, 1);
    EXPECT_LE(wakeUps, threadCount * postCount);
}

TEST_F(ServicesTime, HostIsWokenOnceForWhatIsDueAndForEveryNewDelay) {
    int wakeUps = 0;
    queue.setWakeUp([&] { ++wakeUps; });
    const auto elsewhere = [](auto post) { std::thread(post).join(); };
    elsewhere([&] { queue.after(60, [] {}); });
    elsewhere([&] { queue.after(30, [] {}); });
    EXPECT_EQ(wakeUps, 2) << "the host may have to sleep for less long";
    elsewhere([&] { queue.async([] {}); });
    elsewhere([&] { queue.async([] {}); });
    elsewhere([&] { queue.after(1, [] {}); });
    EXPECT_EQ(wakeUps, 3) << "the host has not run yet what it was woken for";
    queue.run();
    elsewhere([&] { queue.async([] {}); });
    EXPECT_EQ(wakeUps, 4);
    queue.run();
    elsewhere([&] {
        MainQueue::Batch outer;
        {
            MainQueue::Batch inner;
            for (const double delay : {60.0, 30.0, 0.0}) queue.after(delay, [] {});
        }
        EXPECT_EQ(wakeUps, 4) << "not before the batch has ended";
        EXPECT_TRUE(queue.hasDueWork());
    });
    EXPECT_EQ(wakeUps, 5);
    queue.setWakeUp(nullptr);
    queue.removeAll();
}

TEST_F(ServicesTime, IdleMeansNothingDueAndNothingUnderWay) {
    EXPECT_TRUE(queue.isIdle());
    {
        MainQueue::Activity activity;
        EXPECT_FALSE(queue.isIdle());
    }
    queue.after(10, [] {});
    EXPECT_TRUE(queue.isIdle());
    clock.advance(10);
    EXPECT_FALSE(queue.isIdle());
}

TEST_F(ServicesTime, TimersTickOnTheirPhase) {
    auto counter = make<Counter>();
    auto timer = NSTimer::scheduledTimer(1, *counter, "tick:", Value("info"), true);
    EXPECT_EQ(timer->userInfo(), Value("info"));
    queue.run();
    EXPECT_EQ(counter->ticks, 0);
    advance(180);
    EXPECT_EQ(counter->ticks, 180);
    clock.advance(10.25);  // one jump: late for ten, performed once
    queue.run();
    EXPECT_EQ(counter->ticks, 181);
    clock.advance(0.5);  // 190.75: the next is due at 191
    queue.run();
    EXPECT_EQ(counter->ticks, 181);
    clock.advance(0.25);
    queue.run();
    EXPECT_EQ(counter->ticks, 182);
    timer->invalidate();
    timer->invalidate();
    advance(5);
    EXPECT_EQ(counter->ticks, 182);
    EXPECT_FALSE(timer->isValid());
}

TEST_F(ServicesTime, TimersEndAsAsked) {
    struct Case {
        double interval;
        bool repeats;
        int stopAfter;
        int expected;
    };
    const Case cases[] = {{0.5, false, -1, 1},
                          {0.5, true, 3, 3},
                          {0.5, true, -1, 20},
                          {0, false, -1, 1},
                          {-7, true, 4, 4},
                          {1e12, true, -1, 0},
                          {std::numeric_limits<double>::infinity(), true, -1, 0}};
    for (const Case& each : cases) {
        auto counter = make<Counter>();
        counter->stopAfter = each.stopAfter;
        auto timer = NSTimer::scheduledTimer(each.interval, *counter, "tick:", {}, each.repeats);
        advance(10);
        EXPECT_EQ(counter->ticks, each.expected) << each.interval;
        EXPECT_EQ(timer->isValid(), each.repeats && each.stopAfter < 0) << each.interval;
        timer->invalidate();
    }
}

TEST_F(ServicesTime, ZeroIntervalIsATenthOfAMillisecond) {
    auto counter = make<Counter>();
    auto timer = NSTimer::scheduledTimer(0, *counter, "tick:", {}, true);
    EXPECT_EQ(timer->timeInterval(), 0.0001);
    advance(0.01);
    EXPECT_NEAR(counter->ticks, 100, 1);
    timer->invalidate();
}

TEST_F(ServicesTime, TimersKeepTheirTargetsUntilInvalidated) {
    bool destroyed = false;
    auto counter = make<Counter>();
    counter->whenDestroyed = [&] { destroyed = true; };
    Weak<NSTimer> timer = NSTimer::scheduledTimer(1, *counter, "tick:", {}, true);
    counter = nullptr;
    advance(3);
    EXPECT_FALSE(destroyed);
    timer.lock()->invalidate();
    EXPECT_TRUE(destroyed);
    EXPECT_FALSE(timer);
}

TEST_F(ServicesTime, DelayedOperationsAreCancelledByTargetNameAndArgument) {
    auto one = make<Counter>(), two = make<Counter>();
    auto argument = make<Counter>();
    auto schedule = [&] {
        one->notes = two->notes = one->ticks = 0;
        one->performSelectorAfterDelay("note", nullptr, 0);
        one->performSelectorAfterDelay("note", nullptr, 1);
        one->performSelectorAfterDelay("note", argument, 1);
        one->performSelectorAfterDelay("tick:", nullptr, 1);
        two->performSelectorAfterDelay("note", nullptr, 1);
    };
    schedule();
    EXPECT_EQ(one->notes, 0);
    queue.run();
    EXPECT_EQ(one->notes, 1);
    advance(1);
    EXPECT_EQ(one->notes, 3);

    schedule();
    NSObject::cancelPreviousPerformRequests(*one, "note", nullptr);
    NSObject::cancelPreviousPerformRequests(*one, "unheard of", nullptr);
    advance(1);
    EXPECT_EQ(one->notes, 1);
    EXPECT_EQ(one->ticks, 1);
    EXPECT_EQ(two->notes, 1);
}

TEST_F(ServicesTime, DelayedOperationsKeepTheirTargetAlive) {
    int notes = 0;
    auto counter = make<Counter>();
    counter->whenDestroyed = [&, raw = counter.get()] { notes = raw->notes; };
    counter->performSelectorAfterDelay("note", nullptr, 2);
    counter = nullptr;
    advance(2);
    EXPECT_EQ(notes, 1);
}

TEST_F(ServicesTime, ShutdownRunsHandlersBackwardsOnceAndStartsAnew) {
    std::string order;
    bool ran = false;
    for (int round = 0; round < 2; ++round) {
        order.clear();
        for (char name : {'a', 'b', 'c'}) {
            Shutdown::addHandler([&order, name] {
                order += name;
                MainQueue::shared().async([] { ADD_FAILURE() << "called back after the end"; });
            });
        }
        queue.async([&] { ran = true; });
        Shutdown::run();
        EXPECT_EQ(order, "cba");
        Shutdown::run();
        EXPECT_EQ(order, "cba");
        queue.run();
        EXPECT_FALSE(ran);
    }
}

TEST(ServicesTimeAtExit, ShutdownRunsByItselfAtTheEndOfTheProcess) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            Shutdown::addHandler([] { std::fputs("stopped", stderr); });
            std::exit(3);
        },
        ::testing::ExitedWithCode(3), "stopped");
}

}  // namespace
}  // namespace flarebox
