#include "NetworkTest.h"

#include <Foundation/Shutdown.h>
#include <Networking/AFNetworkReachabilityManager.h>
#include <Networking/Backend/Rtnetlink/Interfaces.h>

#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include <cstdio>
#include <cstring>
#include <vector>

namespace flarebox::testing {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Loopback = NetworkMonitor::Loopback;

class ReachabilityTest : public NetworkTest {
protected:
    ReachabilityTest() {
        manager_.setReachabilityStatusChangeBlock([this](std::int64_t status) { reports_.push_back(status); });
    }

    AFNetworkReachabilityManager& manager_ = AFNetworkReachabilityManager::sharedManager();
    std::vector<std::int64_t> reports_;
};

/// Brings the loopback interface of the present network namespace up or down.
bool setLoopback(bool up) {
    int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request = {};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = up ? IFF_UP : 0;
    bool done = ioctl(socket, SIOCSIFFLAGS, &request) == 0;
    close(socket);
    return done;
}

constexpr int notPermitted = 77;

/// In a network of this process's own: no interface but the loopback one, and that one down.
[[noreturn]] void watchLoopbackGoUpAndDown() {
    if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0 && unshare(CLONE_NEWNET) != 0) _exit(notPermitted);
    if (!setLoopback(true) || !setLoopback(false)) _exit(notPermitted);
    auto& manager = AFNetworkReachabilityManager::sharedManager();
    std::vector<std::int64_t> reports;
    auto waitForReports = [&](std::size_t count) {
        if (!pumpUntil([&] { return reports.size() >= count; })) _exit(2);
    };
    manager.setMonitor(NetworkMonitor::systemMonitor(Loopback::Counts));
    manager.setReachabilityStatusChangeBlock([&](std::int64_t status) { reports.push_back(status); });
    manager.startMonitoring();
    waitForReports(1);
    setLoopback(true);
    waitForReports(2);
    setLoopback(false);
    waitForReports(3);
    Shutdown::run();
    _exit(reports == std::vector<std::int64_t>{0, 2, 0} ? 0 : 1);
}

}  // namespace

TEST_F(ReachabilityTest, ReportsTheStatusOnceAndThenItsChanges) {
    auto monitor = make<ManualNetworkMonitor>(AFNetworkReachabilityStatusReachableViaWiFi);
    manager_.setMonitor(monitor);
    pumpUntilIdle();
    EXPECT_THAT(reports_, IsEmpty());

    manager_.startMonitoring();
    EXPECT_THAT(reports_, IsEmpty()) << "a report never comes before startMonitoring has returned";
    EXPECT_EQ(manager_.networkReachabilityStatus(), AFNetworkReachabilityStatusUnknown);
    pumpUntilIdle();
    EXPECT_THAT(reports_, ElementsAre(2));
    EXPECT_TRUE(manager_.isReachable());

    for (auto status : {AFNetworkReachabilityStatusReachableViaWiFi, AFNetworkReachabilityStatusNotReachable,
                        AFNetworkReachabilityStatusReachableViaWWAN, AFNetworkReachabilityStatusUnknown}) {
        monitor->setStatus(status);
    }
    pumpUntilIdle();
    EXPECT_THAT(reports_, ElementsAre(2, 0, 1, -1));
    EXPECT_FALSE(manager_.isReachable());
}

TEST_F(ReachabilityTest, EveryStartReportsAndNothingComesAfterStop) {
    auto monitor = make<ManualNetworkMonitor>(AFNetworkReachabilityStatusReachableViaWiFi);
    manager_.setMonitor(monitor);
    manager_.startMonitoring();
    manager_.startMonitoring();
    pumpUntilIdle();
    EXPECT_THAT(reports_, ElementsAre(2)) << "the first start was replaced before it reported";
    manager_.startMonitoring();
    pumpUntilIdle();
    EXPECT_THAT(reports_, ElementsAre(2, 2));

    monitor->setStatus(AFNetworkReachabilityStatusNotReachable);
    manager_.stopMonitoring();
    monitor->setStatus(AFNetworkReachabilityStatusUnknown);
    pumpUntilIdle();
    EXPECT_THAT(reports_, ElementsAre(2, 2));

    manager_.startMonitoring();
    manager_.setMonitor(make<ManualNetworkMonitor>(AFNetworkReachabilityStatusReachableViaWWAN));
    pumpUntilIdle();
    EXPECT_THAT(reports_, ElementsAre(2, 2, 1)) << "a new monitor takes over";

    manager_.setReachabilityStatusChangeBlock(
        [&](std::int64_t) { manager_.setReachabilityStatusChangeBlock(nullptr); });
    manager_.startMonitoring();
    pumpUntilIdle();
    EXPECT_THAT(reports_, ElementsAre(2, 2, 1));
}

TEST_F(ReachabilityTest, AShutdownEndsTheReportsAndForgetsTheBlock) {
    auto kept = std::make_shared<int>(0);
    manager_.setMonitor(make<ManualNetworkMonitor>());
    manager_.setReachabilityStatusChangeBlock([kept](std::int64_t) { ++*kept; });
    manager_.startMonitoring();
    Shutdown::run();
    pumpUntilIdle();
    EXPECT_EQ(*kept, 0);
    EXPECT_EQ(kept.use_count(), 1);
}

TEST_F(ReachabilityTest, TheBuiltInMonitorReportsSoonAndAfterEveryStart) {
    manager_.startMonitoring();
    EXPECT_TRUE(pumpUntil([&] { return reports_.size() == 1; }));
    manager_.setMonitor(NetworkMonitor::systemMonitor(Loopback::Counts));
    EXPECT_TRUE(pumpUntil([&] { return reports_.size() == 2; }));
    manager_.startMonitoring();
    EXPECT_TRUE(pumpUntil([&] { return reports_.size() == 3; }));
    const std::int64_t status = reachabilityOf(interfaceAddresses().value(), Loopback::Counts);
    EXPECT_EQ(reports_.back(), status);
}

TEST(InterfacesDeathTest, TheBuiltInMonitorSeesEveryChange) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(watchLoopbackGoUpAndDown(), ([](int status) {
                    return WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == notPermitted);
                }),
                "");
}

TEST(Interfaces, ReachabilityFollowsFromTheAddresses) {
    const InterfaceAddress loopback{"lo", true, true, false}, cable{"eth0", true, false, false},
        unplugged{"eth0", false, false, false}, selfAssigned{"wlan0", true, false, true},
        modem{"wwan0", true, false, false}, dialled{"ppp0", true, false, false},
        phone{"rmnet_data0", true, false, false};
    struct Case {
        std::vector<InterfaceAddress> addresses;
        Loopback loopback;
        int status;
    };
    const Case cases[] = {
        {{}, Loopback::Counts, 0},
        {{loopback}, Loopback::DoesNotCount, 0},
        {{loopback}, Loopback::Counts, 2},
        {{loopback, unplugged, selfAssigned}, Loopback::DoesNotCount, 0},
        {{loopback, cable}, Loopback::DoesNotCount, 2},
        {{loopback, modem}, Loopback::DoesNotCount, 1},
        {{dialled, cable}, Loopback::DoesNotCount, 2},
        {{phone, unplugged}, Loopback::DoesNotCount, 1},
    };
    for (auto& test : cases) EXPECT_EQ(reachabilityOf(test.addresses, test.loopback), test.status);
}

}  // namespace flarebox::testing
