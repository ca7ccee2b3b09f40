#include <AdSupport/ASIdentifierManager.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Foundation/Clock.h>
#include <Foundation/NSUUID.h>
#include <UIKit/UIAlertController.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIHost.h>
#include <UIKit/UINavigationController.h>
#include <UIKit/UITabBarController.h>
#include <UIKit/UIWindow.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <thread>

namespace flarebox {
namespace {

TEST(Config, StartsWithItsDefaultsAndIsTheSameFromEveryThread) {
    FlareboxConfig& config = FlareboxConfig::defaultConfig();
    EXPECT_TRUE(config.showFlareboxButton());
    EXPECT_TRUE(config.initializeOnStart());
    EXPECT_EQ(config.refreshTimeInterval(), 0);
    FlareboxConfig* elsewhere = nullptr;
    std::thread([&] { elsewhere = &FlareboxConfig::defaultConfig(); }).join();
    EXPECT_EQ(elsewhere, &config);

    const std::pair<int, int> periods[] = {{0, 180}, {30, 30}, {-5, 180}, {1, 1}};
    for (const auto& [set, inForce] : periods) {
        config.setTimeRefresh(set);
        EXPECT_EQ(config.refreshTimeInterval(), set);
        EXPECT_EQ(config.getTimeRefresh(), inForce);
    }
    config.setTimeRefresh(0);

    config.setInitializeOnStart(false);
    config.configFlareboxWithUserSession(FXUserSession::init(), "g", "1", true, 7);
    config.configFlareboxWithUserSession(nullptr, nullptr, nullptr, false, 0);
    EXPECT_FALSE(config.gameUID());
    EXPECT_FALSE(config.gameVersion());
    EXPECT_FALSE(config.sessionEdit());
    EXPECT_FALSE(config.initializeOnStart()) << "configuring leaves the rest alone";
    config.setInitializeOnStart(true);
}

class DeviceIdentityTest : public ::testing::Test {
protected:
    void SetUp() override { config_.setSessionEdit(nullptr); }
    void TearDown() override {
        ASIdentifierManager::sharedManager().setAdvertisingTrackingEnabled(std::nullopt);
        ASIdentifierManager::sharedManager().setAdvertisingIdentifier(std::nullopt);
        UIApplication::sharedApplication().setUrlOpener(nullptr);
    }
    static UIAlertController* alertOver(const UIViewController& presenter) {
        return objectCast<UIAlertController>(presenter.presentedViewController());
    }
    FlareboxConfig& config_ = FlareboxConfig::defaultConfig();
};

TEST_F(DeviceIdentityTest, IdentifierLivesInTheUserSession) {
    EXPECT_FALSE(config_.validDeviceUID());
    config_.setDeviceUID("lost");
    EXPECT_FALSE(config_.validDeviceUID()) << "without a session there is no place for it";
    config_.setSessionEdit(FXUserSession::init());
    EXPECT_FALSE(config_.validDeviceUID());
    config_.setDeviceUID("");
    EXPECT_FALSE(config_.validDeviceUID());
    const char* zero = "00000000-0000-0000-0000-000000000000";
    config_.setDeviceUID(zero);
    EXPECT_TRUE(config_.validDeviceUID());
    EXPECT_EQ(config_.sessionEdit()->deviceId(), zero);

    ASIdentifierManager::sharedManager().setAdvertisingTrackingEnabled(true);
    ASIdentifierManager::sharedManager().setAdvertisingIdentifier(
        NSUUID::UUIDWithString("6f9619ff-8b86-d011-b42d-00c04fc964ff"));
    EXPECT_EQ(FlareboxConfig::deviceUID(), "6F9619FF-8B86-D011-B42D-00C04FC964FF");
}

TEST_F(DeviceIdentityTest, LimitedTrackingAsksThePlayer) {
    ASIdentifierManager::sharedManager().setAdvertisingTrackingEnabled(false);
    EXPECT_FALSE(FlareboxConfig::deviceUID()) << "without a window nothing is shown";

    VirtualClock clock;
    Clock::setCurrent(&clock);
    UIHost host({667, 375}, 2);
    const auto links = std::make_shared<RecordingUrlOpener>();
    UIApplication::sharedApplication().setUrlOpener(links);
    UIWindow& window = *UIApplication::sharedApplication().delegate()->window();
    UIViewController& root = *window.rootViewController();

    for (const bool canOpen : {false, true}) {
        if (canOpen) links->addScheme("app-prefs");
        EXPECT_FALSE(FlareboxConfig::deviceUID());
        UIAlertController* alert = alertOver(root);
        ASSERT_TRUE(alert);
        EXPECT_EQ(alert->title(), "");
        EXPECT_EQ(alert->message(),
                  "Advertising tracking may be disabled. Please turn off the 'Limit Ad Tracking' from Settings -> "
                  "Privacy -> Advertising.");
        ASSERT_EQ(alert->actions().size(), 2U);
        EXPECT_EQ(alert->actions()[0]->title(), "OK");
        EXPECT_EQ(alert->actions()[1]->title(), "Cancel");
        EXPECT_EQ(alert->actions()[1]->style(), UIAlertActionStyle::Cancel);
        host.update();
        EXPECT_EQ(host.pointerDown(0, {600, 20}), InputResult::Consumed) << "an alert takes every touch";
        host.pointerUp(0, {600, 20});
        EXPECT_EQ(host.keyDown("return"), InputResult::Consumed);
        for (int frame = 0; frame < 60; ++frame) {
            clock.advance(1.0 / 60);
            host.update();
        }
        EXPECT_FALSE(alertOver(root));
        ASSERT_EQ(links->openedURLs().size(), canOpen ? 1U : 0U);
    }
    EXPECT_EQ(links->openedURLs().front(), "App-Prefs:root=Privacy&path=Advertising");
}

TEST_F(DeviceIdentityTest, AlertComesFromTheBottomOfAStackAndTheSelectedTab) {
    ASIdentifierManager::sharedManager().setAdvertisingTrackingEnabled(false);
    UIHost host({667, 375}, 2);
    UIWindow& window = *UIApplication::sharedApplication().delegate()->window();
    std::array<Ref<UIViewController>, 3> pages;
    for (auto& page : pages) page = make<UIViewController>();

    const auto stack = make<UINavigationController>();
    stack->setViewControllers({pages[0], pages[1], pages[2]});
    window.setRootViewController(stack);
    FlareboxConfig::handleAdsDisable();
    EXPECT_TRUE(alertOver(*pages[0]));
    EXPECT_FALSE(alertOver(*pages[2]));
    pages[0]->dismissViewController(false, nullptr);
    host.update();

    std::array<Ref<UIViewController>, 2> tabs = {make<UIViewController>(), make<UIViewController>()};
    const auto tabBar = make<UITabBarController>();
    tabBar->setViewControllers({tabs[0], tabs[1]});
    tabBar->setSelectedIndex(1);
    stack->setViewControllers({tabBar, make<UIViewController>()});
    FlareboxConfig::handleAdsDisable();
    EXPECT_TRUE(alertOver(*tabs[1]));
}

TEST(NetworkAddress, IsTheLastOfTheTwoInterfaces) {
    struct Case {
        std::vector<LocalAddress> addresses;
        const char* expected;
    };
    const Case cases[] = {
        {{}, "error"},
        {{{"lo", "127.0.0.1"}, {"en01", "1.2.3.4"}}, "error"},
        {{{"en0", "10.0.0.1"}, {"pdp_ip0", "10.9.9.9"}, {"eth0", "5.6.7.8"}}, "10.9.9.9"},
        {{{"pdp_ip0", "10.9.9.9"}, {"en0", "10.0.0.1"}, {"en0", "10.0.0.2"}}, "10.0.0.2"},
    };
    for (const Case& example : cases) EXPECT_EQ(FlareboxConfig::addressAmong(example.addresses), example.expected);
    // Every machine has its own address, in the usual notation.
    const auto own = [](const LocalAddress& local) {
        return local.address == "127.0.0.1" && !local.interfaceName.empty();
    };
    EXPECT_TRUE(std::ranges::any_of(localAddresses(), own));
    EXPECT_FALSE(FlareboxConfig::getIPAddress().text().empty());
}

}  // namespace
}  // namespace flarebox
