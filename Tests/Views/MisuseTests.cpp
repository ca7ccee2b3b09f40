// Calls that a host should not make, or makes at odd moments: each does what its documentation says.

#include <AVFoundation/AVPlayer.h>
#include <Flarebox/Core/Logging.h>
#include <Foundation/NSAssertionHandler.h>
#include <Host/Headless/CountingCompositor.h>
#include <Networking/AFNetworkReachabilityManager.h>
#include <Tests/Views/TabTesting.h>
#include <UIKit/CADisplayLink.h>
#include <UIKit/UIScreen.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

namespace flarebox::testing {
namespace {

class MisuseTest : public TabTest {
protected:
    ~MisuseTest() override {
        LogSink::set(nullptr);
        NSAssertionHandler::setCurrentHandler(nullptr);
    }
    void collectLog() {
        LogSink::set([this](LogLevel, std::string_view message) { log_.emplace_back(message); });
    }
    bool hasLogged(std::string_view part) const {
        return std::ranges::any_of(log_, [&](const std::string& line) { return line.find(part) != line.npos; });
    }
    long tabsInWindow() {
        return std::ranges::count_if(window().subviews(),
                                     [](const Ref<UIView>& view) { return objectCast<FlareboxView>(view.get()); });
    }
    /// An assertion handler of a host that wants errors, not exceptions.
    struct Lenient : NSAssertionHandler {
        void handleFailure(std::string_view, std::string_view, int, std::string_view) override {}
    } lenient_;
    std::vector<std::string> log_;
};

template <class Work>
void onAnotherThread(Work work) {
    std::thread(work).join();
}

TEST_F(MisuseTest, OnAnotherThreadNothingHappensAndTheLogNamesTheCall) {
    showLoadedTab();
    FlareboxConfig& config = FlareboxConfig::defaultConfig();
    collectLog();
    UIHost& host = *host_;
    FlareboxView& tab = *tab_;
    CountingCompositor compositor;
    const struct {
        const char* name;
        std::function<void()> call;
    } calls[] = {
        {"UIHost::update", [&] { host.update(); }},
        {"UIHost::setScreen",
         [&] {
             host.setScreen({100, 100}, 1);
         }},
        {"UIHost::setOrientation", [&] { host.setOrientation(UIDeviceOrientation::Portrait); }},
        {"UIHost::pointerDown",
         [&] {
             EXPECT_EQ(host.pointerDown(0, {1, 1}), InputResult::Ignored);
         }},
        {"UIHost::keyDown", [&] { EXPECT_EQ(host.keyDown("escape"), InputResult::Ignored); }},
        {"UIHost::needsDisplay", [&] { EXPECT_FALSE(host.needsDisplay()); }},
        {"UIHost::draw", [&] { host.draw(compositor); }},
        {"UIHost::setTurnBudget", [&] { host.setTurnBudget(1); }},
        {"FlareboxView::init", [] { EXPECT_FALSE(FlareboxView::init()); }},
        {"FlareboxView::toggleFlarebox", [&] { tab.open(); }},
        {"FlareboxView::showAtWindow", [&] { tab.showAtWindow(); }},
        {"FlareboxView::showFlareboxButton", [&] { tab.hideFlareboxButton(); }},
        {"FlareboxView::removeFromSuperview", [&] { tab.removeFromSuperview(); }},
        {"FlareboxView::changeRefreshDataTime", [&] { tab.changeRefreshDataTime(7); }},
        {"FlareboxView::createGameSession", [&] { tab.updateWithNewGameUDID(); }},
        {"AVPlayer::setEverythingMuted", [] { AVPlayer::setEverythingMuted(true); }},
        {"AFNetworkReachabilityManager::setMonitor",
         [] { AFNetworkReachabilityManager::sharedManager().setMonitor(nullptr); }},
        {"FlareboxConfig::setGameUID", [&] { config.setGameUID("other"); }},
        {"FlareboxConfig::configFlareboxWithUserSession",
         [&] { config.configFlareboxWithUserSession(nullptr, nullptr, nullptr, false, 0); }},
    };
    for (const auto& [name, call] : calls) {
        log_.clear();
        onAnotherThread(call);
        ASSERT_EQ(log_.size(), 1U) << name;
        EXPECT_EQ(log_.front(),
                  std::string(name) + " does nothing: it was called from another thread than the main one");
    }
    pass(0.5);
    EXPECT_FALSE(tab.isOpened());
    EXPECT_TRUE(tab.isFlareboxButtonVisible());
    EXPECT_EQ(tab.superview(), &window());
    EXPECT_EQ(UIScreen::mainScreen().bounds().size.width, 667);
    EXPECT_EQ(config.gameUID(), NSString("game-1"));
    EXPECT_TRUE(config.sessionEdit());
}

TEST_F(MisuseTest, TheServiceIsAskedFromAnyThread) {
    collectLog();
    int answers = 0;
    onAnotherThread([&] {
        FlareboxManager::sharedInstance().loadGameCommonAssets([&](const std::shared_ptr<AssetList>& assets, auto&) {
            EXPECT_TRUE(isMainThread());
            EXPECT_TRUE(assets && !assets->empty());
            ++answers;
        });
        FlareboxManager::sharedInstance().sendEngagement(make<FXEngagementData>(), [&](const Ref<NSError>&) {
            EXPECT_TRUE(isMainThread());
            ++answers;
        });
    });
    EXPECT_TRUE(settle([&] { return answers == 2; }));
    EXPECT_TRUE(log_.empty());
}

TEST_F(MisuseTest, TheLastReferenceOfATabMayGoAnywhere) {
    showLoadedTab();
    tab_->open();
    pass(0.5);
    tab_->removeFromSuperview();
    const Weak<FlareboxView> tab(tab_);
    // The network monitor holds the tab as well, until another one loads.
    AFNetworkReachabilityManager::sharedManager().setReachabilityStatusChangeBlock(nullptr);
    ASSERT_TRUE(settleIdle());
    onAnotherThread([last = std::move(tab_)]() mutable { last = nullptr; });
    EXPECT_FALSE(tab.lock());
    host_->update();
}

TEST_F(MisuseTest, WithoutConfigurationTheTabSaysWhatFailedAndRecovers) {
    NSAssertionHandler::setCurrentHandler(&lenient_);
    FlareboxConfig::defaultConfig().configFlareboxWithUserSession(nullptr, nullptr, nullptr, false, 0);
    makeTab()->showAtWindow();
    tab_->open();
    pass(0.5);
    ASSERT_TRUE(settleIdle());
    EXPECT_FALSE(field("lbErrorMessage")->isHidden());
    EXPECT_TRUE(sharedService().requests().empty());

    const Ref<FXUserSession> user = FXUserSession::init();
    FlareboxConfig::defaultConfig().configFlareboxWithUserSession(user, "game-1", "1.0", false, 0);
    tab_->loadData();
    EXPECT_TRUE(settle([&] { return tab_->currentAsset() != nullptr; }));
}

TEST_F(MisuseTest, DoingThingsTwiceDoesThemOnce) {
    showLoadedTab();
    FlareboxConfig::defaultConfig().configFlareboxWithUserSession(FXUserSession::init(), "game-2", "2.0", false, 0);
    EXPECT_EQ(FlareboxConfig::defaultConfig().gameUID(), NSString("game-2"));
    tab_->showAtWindow();
    tab_->showAtWindow();
    pass(0.5);
    EXPECT_EQ(tabsInWindow(), 1);
    tab_->removeFromSuperview();
    tab_->removeFromSuperview();
    EXPECT_EQ(tabsInWindow(), 0);
    // After removal everything can be called.
    tab_->open();
    tab_->hideFlareboxButton();
    tab_->changeRefreshDataTime(60);
    tab_->loadData();
    pass(0.5);
    ASSERT_TRUE(settleIdle());
    tab_->showFlareboxButton();
    tab_->showAtWindow();
    pass(0.5);
    EXPECT_EQ(tabsInWindow(), 1);

    collectLog();
    {
        UIHost second({100, 100}, 1);
        EXPECT_TRUE(hasLogged("while there is another one"));
        second.update();
        EXPECT_EQ(second.pointerDown(0, {1, 1}), InputResult::Ignored);
        EXPECT_FALSE(second.needsDisplay());
    }
    EXPECT_EQ(UIScreen::mainScreen().bounds().size.width, 667);
    tab_->open();
    pass(0.5);
    EXPECT_EQ(leading(), 0);
}

TEST_F(MisuseTest, NullIsNobody) {
    NSAssertionHandler::setCurrentHandler(&lenient_);
    showLoadedTab();
    const Ref<FXAssetInfo> before = tab_->currentAsset();
    tab_->selectAsset(nullptr);
    tab_->load3DModel(nullptr);
    tab_->create3DAssetNodeWithPath("", nullptr);
    tab_->handleLoad3DAssetCompletion("", nullptr);
    tab_->display3DModel(nullptr);
    EXPECT_EQ(tab_->currentAsset(), before);

    int errors = 0;
    const auto count = [&](const Ref<NSError>& error) { errors += error->code() == kApiMissingParamErrorCode; };
    FlareboxManager& manager = FlareboxManager::sharedInstance();
    manager.sendEngagement(nullptr, count);
    manager.sendEngagement(nullptr, nullptr);
    manager.saveCoupon(nullptr, [&](const Ref<FXCoupon>&, const Ref<NSError>& error) { count(error); });
    manager.saveCoupon(nullptr, nullptr);
    EXPECT_EQ(errors, 2);
}

TEST_F(MisuseTest, InsideACallbackTheHostMayDoAnything) {
    showLoadedTab();
    tab_->open();
    pass(0.5);
    // A frame inside a frame is none.
    int turns = 0;
    dispatch_async_main([&] {
        ++turns;
        dispatch_async_main([&] { ++turns; });
        host_->update();
        EXPECT_EQ(turns, 1);
    });
    host_->update();
    host_->update();
    EXPECT_EQ(turns, 2);

    // The tab goes while its own answer is handed over.
    const Weak<FlareboxView> gone(tab_);
    FlareboxManager::sharedInstance().sendEngagement(make<FXEngagementData>(), [&](const Ref<NSError>&) {
        tab_->removeFromSuperview();
        tab_ = nullptr;
        makeTab()->showAtWindow();
    });
    ASSERT_TRUE(settle([&] { return tab_ && tab_.get() != gone.get() && tab_->currentAsset(); }));
    EXPECT_FALSE(gone.lock());
    pass(0.5);
    EXPECT_EQ(tabsInWindow(), 1);

    // The host adapter goes inside its own call, once from the queue and once from a frame's callback.
    dispatch_async_main([&] { host_ = nullptr; });
    UIHost* const ending = host_.get();
    ending->update();
    EXPECT_FALSE(host_);
    EXPECT_FALSE(UIApplication::sharedApplication().delegate());
    host_ = std::make_unique<UIHost>(CGSize{667, 375}, 2);
    {
        CADisplayLink link([&](double) { host_ = nullptr; });
        host_.get()->update();
    }
    EXPECT_FALSE(host_);
}

}  // namespace
}  // namespace flarebox::testing
