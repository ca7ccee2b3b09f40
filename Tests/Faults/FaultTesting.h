#pragma once

#include <Tests/Faults/Schedule.h>
#include <Tests/Views/TabTesting.h>

#include <set>
#include <string>

namespace flarebox::testing {

/// The tab against the sample service behind a proxy that spoils answers.
class FaultTest : public TabTest {
protected:
    void SetUp() override;
    void TearDown() override;

    /// A fresh tab, host and documents folder, and the proxy with these faults.
    void begin(const Schedule& schedule);
    /// All the steps of the schedule, in little real time: what is under way may stay so.
    void perform(const Schedule& schedule);
    /// The network is well, the player has gone back to the game: false when something does not end.
    bool comeToRest();
    /// Whether what the player does now works: a coupon, an event, and a video if there is to be one. The reason if
    /// not.
    std::string tryEverything(bool withVideo);
    /// Lets the tab and the host go; empty, or what is left of them.
    std::string end();

    /// Everything that is to be the same whatever happened before, in words.
    std::string state();
    /// Seconds that the countdown loses in ten.
    int countedInTenSeconds();
    /// Lets virtual seconds pass, a frame each.
    void passSeconds(int seconds);
    bool settleWithin(double seconds, const std::function<bool()>& condition);
    FaultProxy& proxy();

private:
    void perform(const Schedule::Step& step);
    std::string couponMessage();
    bool leaveCoupon();
};

/// Threads and descriptors of the process, by their names and what they lead to.
struct Holdings {
    std::multiset<std::string> threads, descriptors;
    static Holdings now();
};

}  // namespace flarebox::testing
