#include <Tests/Views/TabTesting.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace flarebox::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Writes down what it is told.
struct Diary : FlareboxViewDelegate {
    void flareboxViewDidOpen(FlareboxView&) override { note("open"); }
    void flareboxViewDidClose(FlareboxView&) override { note("close"); }
    void flareboxViewDidSelectAsset(FlareboxView& tab, const Ref<FXAssetInfo>& asset) override {
        EXPECT_EQ(asset, tab.currentAsset());
        note("asset " + asset->uid().string());
    }
    void flareboxViewDidChangeMode(FlareboxView&, AssetMode mode) override { note("mode " + std::to_string(mode)); }
    void flareboxViewDidSaveCoupon(FlareboxView&, const Ref<FXAssetInfo>& asset) override {
        note("coupon " + asset->uid().string());
    }
    bool flareboxViewShouldOpenLink(FlareboxView&, const NSURL& url) override {
        note("link " + url.absoluteString());
        return opensLinks;
    }
    void flareboxViewDidFailToLoad(FlareboxView&, const Ref<NSError>& error) override {
        note("failure " + std::to_string(error->code()));
    }
    void note(std::string event) {
        events.push_back(std::move(event));
        if (inEvent) std::exchange(inEvent, nullptr)();
    }
    std::vector<std::string> take() { return std::exchange(events, {}); }

    std::vector<std::string> events;
    std::function<void()> inEvent;
    bool opensLinks = true;
};

class DelegateTest : public TabTest {
protected:
    void SetUp() override {
        TabTest::SetUp();
        UIApplication::sharedApplication().setUrlOpener(links_);
        sharedService().behave("/game/common-assets/",
                               {.body = R"json([{"uid": "a", "file_icon": "x", "file_image": "y", "video_mobile": "z",
            "where_to_buy": "https://shop.example/a"}, {"uid": "b", "file_icon": "x", "file_image": "y"},
            {"uid": "c", "file_icon": "x", "where_to_buy": "javascript:alert(1)"}])json"});
    }
    void TearDown() override {
        UIApplication::sharedApplication().setUrlOpener(nullptr);
        TabTest::TearDown();
    }
    Diary diary_;
    std::shared_ptr<RecordingUrlOpener> links_ = std::make_shared<RecordingUrlOpener>();
};

TEST_F(DelegateTest, IsToldOfEveryChangeOnce) {
    makeTab()->setDelegate(&diary_);
    tab_->showAtWindow();
    pass(0.2);
    ASSERT_TRUE(settle([&] { return tab_->currentAsset() && MainQueue::shared().isIdle(); }));
    EXPECT_THAT(diary_.take(), ElementsAre("asset a"));

    tab_->open();
    tab_->open();
    pass(0.5);
    tap("btn3d");
    tap("btn3d");
    EXPECT_THAT(diary_.take(), ElementsAre("open", "mode 1"));
    // A product without a video takes the player back to pictures.
    tab_->selectAsset((*tab_->assestsList())[1]);
    tab_->selectAsset((*tab_->assestsList())[1]);
    EXPECT_THAT(diary_.take(), ElementsAre("mode 0", "asset b"));
    tap("btnCoupon");
    ASSERT_TRUE(settleIdle());
    EXPECT_THAT(diary_.take(), ElementsAre("coupon b"));

    // A list that starts with the same product again selects another one than before.
    tab_->loadData();
    ASSERT_TRUE(settle([&] { return !diary_.events.empty() && MainQueue::shared().isIdle(); }));
    EXPECT_THAT(diary_.take(), ElementsAre("asset a"));
    tab_->close();
    tab_->open();
    tab_->removeFromSuperview();
    tab_->removeFromSuperview();
    EXPECT_THAT(diary_.take(), ElementsAre("close", "open", "close"));

    for (const char* path : {"/game/common-assets/", "/sessions/"}) {
        sharedService().behave(path, {.status = 500});
        FlareboxManager::sharedInstance().setSessionInfo(nullptr);
        tab_->loadData();
        ASSERT_TRUE(settle([&] { return !diary_.events.empty() && MainQueue::shared().isIdle(); }));
        EXPECT_THAT(diary_.take(), ElementsAre("failure " + std::to_string(NSURLErrorBadServerResponse)));
    }
    network_->setStatus(AFNetworkReachabilityStatusNotReachable);
    ASSERT_TRUE(settle([&] { return !diary_.events.empty(); }));
    EXPECT_THAT(diary_.take(), ElementsAre("failure " + std::to_string(NSURLErrorNotConnectedToInternet)));
}

TEST_F(DelegateTest, MayRefuseLinks) {
    showLoadedTab();
    tab_->setDelegate(&diary_);
    tab_->open();
    pass(0.5);
    diary_.take();
    diary_.opensLinks = false;
    tap("btnBuy");
    EXPECT_THAT(links_->openedURLs(), IsEmpty());
    diary_.opensLinks = true;
    tap("btnBuy");
    tab_->openKestrinProd();
    const std::string buy = "https://shop.example/a", store = FlareboxView::appStoreLink().string();
    EXPECT_THAT(diary_.take(), ElementsAre("link " + buy, "link " + buy, "link " + store));
    EXPECT_THAT(links_->openedURLs(), ElementsAre(buy, store));
    // Nobody is asked about what is never opened.
    tab_->selectAsset((*tab_->assestsList())[2]);
    diary_.take();
    tap("btnBuy");
    EXPECT_THAT(diary_.take(), IsEmpty());
    EXPECT_EQ(links_->openedURLs().size(), 2U);
}

TEST_F(DelegateTest, MayLetTheTabGo) {
    const std::function<void()> occasions[] = {
        [&] { tab_->open(); },
        [&] { tab_->changeAssetMode(AssetMode3D); },
        [&] { tab_->selectAsset((*tab_->assestsList())[1]); },
        [&] { network_->setStatus(AFNetworkReachabilityStatusNotReachable), host_->update(); },
    };
    for (const auto& occasion : occasions) {
        network_->setStatus(AFNetworkReachabilityStatusReachableViaWiFi);
        showLoadedTab();
        tab_->setDelegate(&diary_);
        diary_.inEvent = [&] {
            tab_->removeFromSuperview();
            AFNetworkReachabilityManager::sharedManager().setReachabilityStatusChangeBlock(nullptr);
            tab_ = nullptr;
        };
        occasion();
        ASSERT_TRUE(settle([&] { return !tab_; }));
        ASSERT_TRUE(settleIdle());
    }
}

}  // namespace
}  // namespace flarebox::testing
