#pragma once

#include <Examples/Service/Service.h>
#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Flarebox.h>
#include <Foundation/Clock.h>
#include <Foundation/NSFileManager.h>
#include <Networking/AFNetworkReachabilityManager.h>
#include <Tests/Support/Pump.h>
#include <Tests/Support/TemporaryDirectory.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIHost.h>
#include <UIKit/UIWindow.h>

#include <gtest/gtest.h>

#include <memory>
#include <string_view>

namespace flarebox::testing {

/// The singleton of the service client reads its address once, so all tests of a program share one service.
inline examples::Service& sharedService() {
    static examples::Service service;
    static const bool started = [] {
        const bool ok = service.start();
        flareboxBundle().setInfoDictionaryValue("API_URL", service.baseURL());
        return ok;
    }();
    EXPECT_TRUE(started);
    return service;
}

/// A tab in a host without a screen, on a clock that is moved by hand, against a real service on loopback.
class TabTest : public ::testing::Test {
protected:
    void SetUp() override {
        sharedService().behaveNormally();
        sharedService().forgetRequests();
        NSFileManager::defaultManager().setDocumentsDirectory(documents_.path());
        Clock::setCurrent(&clock_);
        host_ = std::make_unique<UIHost>(CGSize{667, 375}, 2);
        AFNetworkReachabilityManager::sharedManager().setMonitor(network_);
        const Ref<FXUserSession> user = FXUserSession::init();
        user->setDeviceId("6F9619FF-8B86-D011-B42D-00C04FC964FF");
        FlareboxConfig::defaultConfig().configFlareboxWithUserSession(user, "game-1", "1.0", false, 0);
        FlareboxConfig::defaultConfig().setTimeRefresh(0);
        FlareboxManager::sharedInstance().setSessionInfo(nullptr);
        FlareboxManager::sharedInstance().setGameAssets(nullptr);
    }
    void TearDown() override {
        tab_ = nullptr;
        host_ = nullptr;
        Clock::setCurrent(nullptr);
    }

    Ref<FlareboxView> makeTab() {
        tab_ = FlareboxView::init();
        return tab_;
    }
    /// Runs frames without any time passing until the condition holds.
    bool settle(const std::function<bool()>& condition) {
        return pumpUntil([&] {
            host_->update();
            return condition();
        });
    }
    bool settleIdle() {
        return settle([] { return MainQueue::shared().isIdle(); });
    }
    /// Lets virtual time pass in frames.
    void pass(double seconds) {
        for (double passed = 0; passed < seconds; passed += 1.0 / 60) {
            clock_.advance(1.0 / 60);
            host_->update();
        }
    }
    /// The tab attached to the window, closed, its first list loaded.
    void showLoadedTab() {
        makeTab()->showAtWindow();
        pass(0.2);
        ASSERT_TRUE(settle([&] { return tab_->currentAsset() != nullptr; }));
        ASSERT_TRUE(settleIdle());
    }

    /// What the kit logs at info level and above meanwhile.
    std::string loggedBy(const std::function<void()>& action) {
        FlareboxConfig::defaultConfig().setEnableLogging(true);
        FlareboxConfig::defaultConfig().setLogLevel(1);
        ::testing::internal::CaptureStderr();
        action();
        FlareboxConfig::defaultConfig().setEnableLogging(false);
        return ::testing::internal::GetCapturedStderr();
    }
    UIWindow& window() { return *UIApplication::sharedApplication().delegate()->window(); }
    /// A field of the tab that is listed in its class, or null.
    template <class T = UIView>
    T* field(std::string_view name) {
        const Outlet* outlet = FlareboxView::staticClass().outlet(name);
        return outlet ? objectCast<T>(outlet->get(*tab_)) : nullptr;
    }
    double leading() { return field<NSLayoutConstraint>("constraintLeadingContentView")->constant(); }
    InputResult tap(CGPoint point) {
        const InputResult result = host_->pointerDown(0, point);
        host_->pointerUp(0, point);
        host_->update();
        return result;
    }
    InputResult tap(std::string_view name) {
        const CGRect rect = field(name)->presentationRectInRoot();
        return tap({rect.midX(), rect.midY()});
    }

    TemporaryDirectory documents_;
    VirtualClock clock_;
    Ref<ManualNetworkMonitor> network_ = make<ManualNetworkMonitor>(AFNetworkReachabilityStatusReachableViaWiFi);
    std::unique_ptr<UIHost> host_;
    Ref<FlareboxView> tab_;
};

}  // namespace flarebox::testing
