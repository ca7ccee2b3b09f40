#pragma once

#include <AVFoundation/AVPlayer.h>
#include <Flarebox/Flarebox.h>
#include <Foundation/Clock.h>
#include <Foundation/LogSink.h>
#include <Foundation/NSFileManager.h>
#include <Host/Headless/HeadlessHost.h>
#include <Networking/AFNetworkReachabilityManager.h>
#include <Tests/Support/TemporaryDirectory.h>
#include <UIKit/UIApplication.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace flarebox::testing {

/// A game with its tab for the code of the pages: no screen, no network, and a home of its own.
class PageTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
            ::setenv(variable, home_.path().c_str(), 1);
        Clock::setCurrent(&clock_);
        panel_ = std::make_unique<HeadlessHost>(CGSize{667, 375}, 2);
        AFNetworkReachabilityManager::sharedManager().setMonitor(
            make<ManualNetworkMonitor>(AFNetworkReachabilityStatusNotReachable));
        const Ref<FXUserSession> player = FXUserSession::init();
        player->setDeviceId("6F9619FF-8B86-D011-B42D-00C04FC964FF");
        FlareboxConfig::defaultConfig().configFlareboxWithUserSession(player, "my-game", "1.0", false, 0);
        tab_ = FlareboxView::init();
        ASSERT_TRUE(tab_);
        tab_->showAtWindow();
        // It is attached a moment later.
        for (int frame = 0; frame < 15; ++frame) showFrame();
        ASSERT_TRUE(tab_->window());
    }
    void TearDown() override {
        tab_ = nullptr;
        panel_ = nullptr;
        FlareboxConfig::defaultConfig().setTheme(nullptr);
        AVPlayer::setEverythingMuted(false);
        UIApplication::sharedApplication().setUrlOpener(nullptr);
        LogSink::set(nullptr);
        Clock::setCurrent(nullptr);
    }

    void showFrame() {
        clock_.advance(1.0 / 60);
        panel_->update();
        panel_->drawFrame();
    }

    TemporaryDirectory home_;
    VirtualClock clock_;
    std::unique_ptr<HeadlessHost> panel_;
    Ref<FlareboxView> tab_;
};

}  // namespace flarebox::testing
