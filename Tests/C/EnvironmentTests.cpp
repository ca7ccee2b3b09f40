// What a game in C has itself: pictures, a clock, the network's state.

#include <Flarebox/C/flarebox.h>
#include <Flarebox/Managers/FlareboxManager.h>
#include <Foundation/Clock.h>
#include <Foundation/MainQueue.h>
#include <Networking/AFImageDownloader.h>
#include <Networking/AFNetworkReachabilityManager.h>
#include <UIKit/UIHost.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace flarebox::testing {
namespace {

constexpr const char* address = "http://127.0.0.1:9/never-asked.png";

class EnvironmentTest : public ::testing::Test {
protected:
    ~EnvironmentTest() override { flarebox_set_clock(nullptr); }

    /// The picture that is there at once, without a transfer; null for none.
    static Ref<UIImage> atHand() {
        Ref<UIImage> found;
        AFImageDownloader::defaultInstance().downloadImageForURLRequest(
            NSURLRequest::requestWithURL(NSURL::URLWithString(address)), {},
            [&found](auto&, auto&, const Ref<UIImage>& image) { found = image; }, nullptr);
        return found;
    }

    std::optional<UIHost> host_{std::in_place, CGSize{100, 100}, 1};
};

TEST_F(EnvironmentTest, PicturesThatTheGameHasAreNotDownloaded) {
    const std::vector<std::uint32_t> atlas = {1, 2, 9, 3, 4, 9};
    EXPECT_EQ(flarebox_set_picture(address, 2, 2, 3, atlas.data()), FLAREBOX_OK);
    const Ref<UIImage> picture = atHand();
    ASSERT_TRUE(picture);
    EXPECT_EQ(std::vector(picture->pixels().begin(), picture->pixels().end()),
              (std::vector<std::uint32_t>{1, 2, 3, 4}));
    // The cache's bounds are not its own.
    AFImageDownloader::defaultInstance().imageCache().removeAllImages();
    EXPECT_TRUE(atHand());

    const struct {
        const char* url;
        std::int32_t width, height, stride;
    } refused[] = {{nullptr, 2, 2, 3},  {"", 2, 2, 3},      {address, 0, 2, 3},
                   {address, 2, -1, 3}, {address, 3, 2, 2}, {address, 4097, 1, 4097}};
    for (const auto& [url, width, height, stride] : refused) {
        EXPECT_EQ(flarebox_set_picture(url, width, height, stride, atlas.data()), FLAREBOX_INVALID_ARGUMENT);
        EXPECT_STRNE(flarebox_last_error(), "");
    }
    Ref<NSError> error;
    EXPECT_FALSE(FlareboxManager::setPicture(NSURL::URLWithString(address), 2, 2, {1, 2, 3}, &error));
    ASSERT_TRUE(error);
    EXPECT_NE(error->localizedDescription().find("do not match"), std::string::npos);
    EXPECT_EQ(atHand(), picture) << "what is refused changes nothing";

    EXPECT_EQ(flarebox_set_picture(address, 0, 0, 0, nullptr), FLAREBOX_OK);
    EXPECT_FALSE(atHand()) << "taken back";
    flarebox_set_picture(address, 2, 2, 3, atlas.data());
    host_.reset();
    host_.emplace(CGSize{100, 100}, 1);
    EXPECT_FALSE(atHand()) << "the host has gone";
}

TEST_F(EnvironmentTest, TimeIsTheGames) {
    struct Time {
        double uptime = 50, date = 1000;
    } time;
    flarebox_clock clock = FLAREBOX_CLOCK;
    clock.context = &time;
    clock.uptime = [](void* context) { return static_cast<Time*>(context)->uptime; };
    EXPECT_EQ(flarebox_set_clock(&clock), FLAREBOX_INVALID_ARGUMENT) << "half a clock";
    clock.time_since_1970 = [](void* context) { return static_cast<Time*>(context)->date; };
    int runs = 0;
    dispatch_after_main(20, [&runs] { ++runs; });
    EXPECT_EQ(flarebox_set_clock(&clock), FLAREBOX_OK);
    EXPECT_EQ(Clock::current().uptime(), 50);
    EXPECT_EQ(Clock::current().timeSince1970(), 1000);
    host_->update();
    EXPECT_EQ(runs, 0);
    time.uptime = 71;
    host_->update();
    EXPECT_EQ(runs, 1) << "what waited has the rest of its time";
    EXPECT_EQ(flarebox_set_clock(nullptr), FLAREBOX_OK);
    EXPECT_EQ(&Clock::current(), &Clock::real());
}

TEST_F(EnvironmentTest, AClockThatWasTakenBackIsNotCalledAnyMore) {
    struct Time {
        std::atomic<bool> isInside = false, hasLeft = false;
    } time;
    flarebox_clock clock = FLAREBOX_CLOCK;
    clock.context = &time;
    clock.uptime = [](void* context) {
        if (isMainThread()) return 1e9;
        auto& own = *static_cast<Time*>(context);
        own.isInside = true;
        while (&Clock::current() != &Clock::real()) std::this_thread::yield();
        // Time for the main thread to come back too early.
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        own.hasLeft = true;
        return 1e9;
    };
    clock.time_since_1970 = clock.uptime;
    ASSERT_EQ(flarebox_set_clock(&clock), FLAREBOX_OK);
    Clock& taken = Clock::current();
    EXPECT_EQ(taken.uptime(), 1e9);
    std::jthread worker([&taken] { taken.uptime(); });
    while (!time.isInside) std::this_thread::yield();
    EXPECT_EQ(flarebox_set_clock(nullptr), FLAREBOX_OK);
    EXPECT_TRUE(time.hasLeft) << "the game may let its context go now";
    EXPECT_LT(taken.uptime(), 1e9) << "a thread that came late";
}

TEST_F(EnvironmentTest, TheNetworkIsWhatTheGameSays) {
    auto& manager = AFNetworkReachabilityManager::sharedManager();
    const auto status = [&] {
        host_->update();
        return static_cast<int>(manager.networkReachabilityStatus());
    };
    int reports = 0;
    manager.setReachabilityStatusChangeBlock([&](auto) { ++reports; });
    EXPECT_EQ(flarebox_set_network(FLAREBOX_NETWORK_NONE), FLAREBOX_OK);
    manager.startMonitoring();
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(flarebox_set_network(FLAREBOX_NETWORK_WIFI), FLAREBOX_OK);
    EXPECT_EQ(status(), 2);
    EXPECT_EQ(flarebox_set_network(FLAREBOX_NETWORK_WIFI), FLAREBOX_OK);
    EXPECT_EQ(status(), 2);
    EXPECT_EQ(reports, 2) << "one for each change";
    EXPECT_EQ(flarebox_set_network(3), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_EQ(flarebox_set_network(-3), FLAREBOX_INVALID_ARGUMENT);
    EXPECT_EQ(status(), 2);
    host_.reset();
    host_.emplace(CGSize{100, 100}, 1);
    manager.startMonitoring();
    EXPECT_EQ(flarebox_set_network(FLAREBOX_NETWORK_MOBILE), FLAREBOX_OK);
    EXPECT_EQ(status(), 1) << "the state of the former host has gone with it";
    manager.stopMonitoring();
}

TEST_F(EnvironmentTest, AFrameWithoutTimeDoesOneThingNevertheless) {
    std::string done;
    for (const char name : {'a', 'b', 'c'}) dispatch_async_main([&done, name] { done += name; });
    for (const char* soFar : {"a", "ab", "abc"}) {
        host_->update(0);
        EXPECT_EQ(done, soFar);
    }
}

}  // namespace
}  // namespace flarebox::testing
