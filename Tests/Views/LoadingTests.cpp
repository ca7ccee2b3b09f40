#include <AdSupport/ASIdentifierManager.h>
#include <Foundation/NSAssertionHandler.h>
#include <Tests/Views/TabTesting.h>
#include <UIKit/UICollectionView.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>

namespace flarebox::testing {
namespace {

using examples::Behaviour;

class LoadingTest : public TabTest {
protected:
    void TearDown() override {
        ASIdentifierManager::sharedManager().setAdvertisingTrackingEnabled(std::nullopt);
        TabTest::TearDown();
    }
    std::size_t requests(std::string_view path) { return sharedService().requests(path).size(); }
    bool shown(std::string_view name) { return !field(name)->isHidden(); }
    std::string errorText() { return shown("lbErrorMessage") ? field<UILabel>("lbErrorMessage")->text().string() : ""; }
};

TEST_F(LoadingTest, CreatesASessionThenListsTheAssets) {
    EXPECT_EQ(loggedBy([&] { showLoadedTab(); }),
              "KestrinSDK Info: create a game session\nKestrinSDK Info: Game session created\n"
              "KestrinSDK Info: Load common game assets\nKestrinSDK Info: Common game assets load done\n");

    EXPECT_EQ(requests("/sessions/"), 1U);
    EXPECT_EQ(requests("/game/common-assets/"), 1U);
    for (const auto& request : sharedService().requests()) EXPECT_EQ(request.complaint, "") << request.path;
    for (const Ref<FXAssetInfo>& asset : *tab_->assestsList()) EXPECT_FALSE(asset->fileIcon().text().empty());
    EXPECT_EQ(tab_->assestsList(), FlareboxManager::sharedInstance().gameAssets());
    EXPECT_EQ(tab_->currentAsset(), tab_->assestsList()->front());
    EXPECT_TRUE(shown("assetView"));
    EXPECT_FALSE(shown("emptyView"));
    EXPECT_FALSE(shown("loadingView"));
    EXPECT_TRUE(field<UIImageView>("imgAssetContent")->image());
    EXPECT_EQ(field<UILabel>("lbAssetTitle")->text(), tab_->currentAsset()->title());
    EXPECT_EQ(tab_->refreshDataTime(), 180);
}

TEST_F(LoadingTest, FailuresShowOneLineAndWaitForTheCountdown) {
    struct Case {
        const char* path;
        Behaviour behaviour;
    };
    const Case cases[] = {
        {"/sessions/", {.status = 500}},
        {"/sessions/", {.body = "{", .contentType = "application/json"}},
        {"/game/common-assets/", {.status = 503}},
        {"/game/common-assets/", {.ending = Behaviour::Ending::Cut}},
    };
    for (const Case& failure : cases) {
        SCOPED_TRACE(failure.path);
        FlareboxManager::sharedInstance().setSessionInfo(nullptr);
        sharedService().behaveNormally();
        sharedService().behave(failure.path, failure.behaviour);
        makeTab()->showAtWindow();
        ASSERT_TRUE(settle([&] { return errorText() == "Something went wrong"; }));
        EXPECT_FALSE(shown("assetView"));
        EXPECT_FALSE(shown("emptyView"));
        EXPECT_EQ(tab_->refreshDataTime(), 180);
        const std::size_t before = requests(failure.path);

        sharedService().behaveNormally();
        pass(170);
        EXPECT_EQ(requests(failure.path), before) << "nothing is retried at once";
        pass(11);
        ASSERT_TRUE(settle([&] { return tab_->currentAsset() != nullptr; }));
        EXPECT_EQ(errorText(), "");
        tab_->removeFromSuperview();
    }
}

TEST_F(LoadingTest, FollowsTheNetwork) {
    network_->setStatus(AFNetworkReachabilityStatusNotReachable);
    makeTab()->showAtWindow();
    ASSERT_TRUE(settle([&] { return errorText() == "You have no internet connection"; }));
    EXPECT_EQ(requests("/sessions/"), 0U);
    network_->setStatus(AFNetworkReachabilityStatusReachableViaWWAN);
    ASSERT_TRUE(settle([&] { return tab_->currentAsset() != nullptr; }));
    EXPECT_EQ(tab_->netWorkStatus(), 1);
    EXPECT_EQ(errorText(), "");

    network_->setStatus(AFNetworkReachabilityStatusUnknown);
    ASSERT_TRUE(settle([&] { return errorText() == "You have no internet connection"; }));
    EXPECT_TRUE(shown("assetView")) << "what is there stays";
    network_->setStatus(AFNetworkReachabilityStatusReachableViaWiFi);
    ASSERT_TRUE(settle([&] { return requests("/game/common-assets/") == 2 && tab_->currentAsset(); }));
    EXPECT_EQ(requests("/sessions/"), 1U) << "a session is kept";
    EXPECT_TRUE(settleIdle()) << "what is still under way would reach the service in another test";
}

TEST_F(LoadingTest, AsksForTrackingInItsErrorLine) {
    FlareboxConfig::defaultConfig().setDeviceUID(nullptr);
    ASIdentifierManager::sharedManager().setAdvertisingTrackingEnabled(false);
    makeTab()->showAtWindow();
    pass(0.3);
    EXPECT_TRUE(errorText().starts_with("Advertising tracking may be disabled. Please turn off"));
    EXPECT_TRUE(sharedService().requests().empty());
    EXPECT_EQ(tab_->refreshDataTime(), 180);

    ASIdentifierManager::sharedManager().setAdvertisingTrackingEnabled(true);
    pass(181);
    ASSERT_TRUE(settle([&] { return tab_->currentAsset() != nullptr; }));
    EXPECT_TRUE(FlareboxConfig::defaultConfig().validDeviceUID());
}

TEST_F(LoadingTest, RefreshesOnlyAListThatIsNotBeingLookedAt) {
    showLoadedTab();
    const auto reloadsIn = [&](double seconds) {
        const std::size_t before = requests("/game/common-assets/");
        pass(seconds);
        settleIdle();
        return requests("/game/common-assets/") - before;
    };
    EXPECT_EQ(reloadsIn(400), 0U) << "never opened";
    tab_->open();
    EXPECT_EQ(reloadsIn(400), 0U) << "open";
    tab_->close();
    EXPECT_EQ(reloadsIn(181), 1U) << "closed again";
    EXPECT_EQ(requests("/sessions/"), 1U);

    tab_->changeRefreshDataTime(10);
    EXPECT_EQ(tab_->refreshDataTime(), 10);
    EXPECT_EQ(reloadsIn(10.5), 1U);
    tab_->changeRefreshDataTime(0);
    EXPECT_EQ(tab_->refreshDataTime(), 180);
}

TEST_F(LoadingTest, AFlappingNetworkEndsInOneListAndOneTimer) {
    for (const bool hasSession : {false, true}) {
        SCOPED_TRACE(hasSession);
        makeTab()->showAtWindow();
        pass(0.2);
        if (hasSession) {
            ASSERT_TRUE(settle([&] { return tab_->currentAsset() != nullptr; }));
        }
        for (int i = 0; i < 50; ++i) {
            network_->setStatus(i % 2 ? AFNetworkReachabilityStatusReachableViaWiFi
                                      : AFNetworkReachabilityStatusNotReachable);
            pass(0.1);
        }
        ASSERT_TRUE(
            settle([&] { return tab_->currentAsset() && !shown("loadingView") && MainQueue::shared().isIdle(); }));
        EXPECT_TRUE(shown("assetView"));
        EXPECT_FALSE(shown("emptyView"));
        EXPECT_EQ(errorText(), "");
        EXPECT_EQ(tab_->netWorkStatus(), 2);
        const int before = tab_->refreshDataTime();
        pass(10);
        EXPECT_NEAR(before - tab_->refreshDataTime(), 10, 1) << "one timer counts";
        tab_->removeFromSuperview();
    }
}

TEST_F(LoadingTest, AHostMayChangeItsGameAtAnyTime) {
    showLoadedTab();
    FlareboxConfig::defaultConfig().setGameUID("game-2");
    sharedService().behave("/sessions/", {.delay = std::chrono::milliseconds(30)});
    tab_->updateWithNewGameUDID();
    EXPECT_TRUE(shown("loadingView"));
    FlareboxConfig::defaultConfig().setGameUID("game-3");
    tab_->updateWithNewGameUDID();
    ASSERT_TRUE(settle([&] { return requests("/game/common-assets/") == 2U; }));
    ASSERT_TRUE(settleIdle());
    const auto sessions = sharedService().requests("/sessions/");
    ASSERT_EQ(sessions.size(), 2U) << "one at a time";
    EXPECT_EQ(sessions[1].header("Game-UID"), "game-2");
    EXPECT_EQ(sharedService().requests("/game/common-assets/")[1].header("Game-UID"), "game-3")
        << "the configuration is read afresh";
    tab_->updateWithNewGameUDID();
    ASSERT_TRUE(settle([&] { return requests("/game/common-assets/") == 3U; }));
    ASSERT_TRUE(settleIdle());
    EXPECT_EQ(sharedService().requests("/sessions/")[2].header("Game-UID"), "game-3");
    EXPECT_TRUE(shown("assetView"));
    const int before = tab_->refreshDataTime();
    pass(10);
    EXPECT_NEAR(before - tab_->refreshDataTime(), 10, 1);

    network_->setStatus(AFNetworkReachabilityStatusNotReachable);
    ASSERT_TRUE(settle([&] { return !tab_->isNetworkConnected(); }));
    tab_->updateWithNewGameUDID();
    EXPECT_FALSE(shown("loadingView")) << "not without a network";
}

TEST_F(LoadingTest, AFailedAssertionEndsTheFrameAndNotTheTab) {
    FlareboxConfig& config = FlareboxConfig::defaultConfig();
    struct Case {
        const char* load;
        bool hasSession;
    };
    for (const Case& each : {Case{"session", false}, Case{"list", true}}) {
        SCOPED_TRACE(each.load);
        config.setGameUID(nullptr);
        FlareboxManager::sharedInstance().setSessionInfo(each.hasSession ? FXSessionInfo::initWithDictionary({})
                                                                         : nullptr);
        makeTab()->showAtWindow();
        bool isThrown = false;
        try {
            ASSERT_TRUE(settle([&] { return !field("lbErrorMessage")->isHidden(); }));
        } catch (const NSException&) {
            isThrown = true;
        }
        EXPECT_EQ(isThrown, NSAssertionHandler::assertionsActive());
        EXPECT_TRUE(field("loadingView")->isHidden());
        EXPECT_FALSE(field("lbErrorMessage")->isHidden());

        config.setGameUID("game-1");
        pass(config.getTimeRefresh() + 1.0);
        EXPECT_TRUE(settle([&] { return tab_->currentAsset() != nullptr; }));
        EXPECT_TRUE(field("lbErrorMessage")->isHidden());
        tab_->removeFromSuperview();
    }
}

TEST_F(LoadingTest, AnEmptyListIsSaidAndAskedForAgain) {
    sharedService().behave("/game/common-assets/",
                           {.body = R"([{"id": 1, "title": "No icon"}, {"id": 2, "file_icon": ""}])"});
    makeTab()->showAtWindow();
    ASSERT_TRUE(settle([&] { return shown("emptyView"); }));
    EXPECT_FALSE(shown("assetView"));
    EXPECT_FALSE(tab_->currentAsset());
    pass(181);
    ASSERT_TRUE(settle([&] { return requests("/game/common-assets/") == 2U; }));
    sharedService().behaveNormally();
    ASSERT_TRUE(settleIdle());
    tab_->open();
    ASSERT_TRUE(settle([&] { return tab_->currentAsset() != nullptr; })) << "opening an empty tab loads";
}

TEST_F(LoadingTest, AListThatVanishesUnderAFingerHarmsNothing) {
    showLoadedTab();
    tab_->open();
    pass(0.4);
    auto* list = field<UICollectionView>("collectionView");
    const CGRect cell = list->cellForItemAtIndexPath({0, 1})->presentationRectInRoot();
    host_->pointerDown(0, {cell.midX(), cell.midY()});
    sharedService().behave("/game/common-assets/", {.body = "[]"});
    network_->setStatus(AFNetworkReachabilityStatusReachableViaWWAN);
    ASSERT_TRUE(settle([&] { return shown("emptyView"); }));
    host_->pointerUp(0, {cell.midX(), cell.midY()});
    pass(1);
    EXPECT_FALSE(tab_->currentAsset());
    tab_->selectAsset(nullptr);
    tab_->showAtView(*tab_);
    EXPECT_EQ(tab_->superview(), &window());
}

TEST_F(LoadingTest, TappingACellSelectsItsAsset) {
    showLoadedTab();
    tab_->open();
    pass(0.4);
    auto* list = field<UICollectionView>("collectionView");
    const Ref<UICollectionViewCell> cell = list->cellForItemAtIndexPath({0, 1});
    ASSERT_TRUE(cell);
    const CGRect rect = cell->presentationRectInRoot();
    tap({rect.midX(), rect.midY()});
    EXPECT_EQ(tab_->currentAsset(), (*tab_->assestsList())[1]);
    const double side = cell->frame().width();
    EXPECT_NEAR(side,
                std::min(list->frame().width(), list->frame().height()) - 10 * FlareboxView::getViewSize().height / 420,
                1e-6);

    tap("btnNext");
    EXPECT_NEAR(list->contentOffset().x, side, 1e-6);
    tap("btnPrevious");
    tap("btnPrevious");
    EXPECT_EQ(list->contentOffset().x, 0);
    for (int i = 0; i < 40; ++i) tap("btnNext");
    EXPECT_EQ(list->indexPathsForVisibleItems().back().row, tab_->assestsList()->size() - 1);
    EXPECT_EQ(tab_->currentAsset(), (*tab_->assestsList())[1]) << "paging selects nothing";
}

}  // namespace
}  // namespace flarebox::testing
