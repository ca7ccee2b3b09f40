#include <Flarebox/Core/CompanionApp.h>
#include <Flarebox/Views/CouponView.h>
#include <Tests/Views/TabTesting.h>
#include <UIKit/UIButton.h>
#include <UIKit/UILabel.h>

#include <gmock/gmock.h>

namespace flarebox::testing {
namespace {

using examples::Behaviour;
using ::testing::ElementsAre;

class CouponTest : public TabTest {
protected:
    void SetUp() override {
        TabTest::SetUp();
        UIApplication::sharedApplication().setUrlOpener(links_);
        showLoadedTab();
        tab_->open();
        pass(0.5);
        ASSERT_TRUE(settleIdle());
        sharedService().forgetRequests();
    }
    void TearDown() override {
        UIApplication::sharedApplication().setUrlOpener(nullptr);
        TabTest::TearDown();
    }
    CouponView* overlay() { return field<CouponView>("couponView"); }
    template <class T = UIView>
    T* part(std::string_view name) {
        return objectCast<T>(CouponView::staticClass().outlet(name)->get(*overlay()));
    }
    std::string message() { return part<UILabel>("lbMessage")->text().string(); }
    bool canBeLeft() { return part("btnClose")->isVisibleInWindow() && part("btnKestrinApp")->isVisibleInWindow(); }
    void tapPart(std::string_view name) {
        const CGRect rect = part(name)->presentationRectInRoot();
        tap({rect.midX(), rect.midY()});
    }

    std::shared_ptr<RecordingUrlOpener> links_ = std::make_shared<RecordingUrlOpener>();
};

TEST_F(CouponTest, IsSavedAtOnceAndToldOf) {
    sharedService().behave("/coupons/", {.delay = std::chrono::milliseconds(50)});
    tap("btnCoupon");
    ASSERT_TRUE(overlay());
    EXPECT_EQ(message(), "Saving coupon...");
    EXPECT_TRUE(part("lbMessage")->isVisibleInWindow());
    EXPECT_FALSE(canBeLeft());
    EXPECT_TRUE(part("btnClose")->isHidden() && part("btnKestrinApp")->isHidden());
    EXPECT_EQ(field("assetView")->subviews().back().get(), overlay());
    EXPECT_EQ(overlay()->asset(), tab_->currentAsset());
    ASSERT_TRUE(settle([&] { return canBeLeft(); }));
    EXPECT_EQ(message(), "Coupon saved to My coupons in the Kestrin App");
    ASSERT_TRUE(settleIdle());

    const auto coupons = sharedService().requests("/coupons/");
    ASSERT_EQ(coupons.size(), 1U);
    EXPECT_EQ(coupons[0].complaint, "");
    const std::string session = FlareboxManager::sharedInstance().sessionInfo()->uid().string();
    EXPECT_EQ(coupons[0].body,
              "{\"session\":\"" + session + "\",\"asset\":" + tab_->currentAsset()->_id().stringValue() + "}");
    EXPECT_EQ(sharedService().requests("/kafka/engagement/").size(), 1U);

    CouponView* first = overlay();
    tapPart("btnClose");
    EXPECT_TRUE(overlay()->isHidden());
    EXPECT_EQ(field("assetView")->subviews().front().get(), first);
    tap("btnCoupon");
    EXPECT_EQ(overlay(), first) << "one overlay for the tab";
    ASSERT_TRUE(settleIdle());
    EXPECT_EQ(sharedService().requests("/coupons/").size(), 2U);
    EXPECT_EQ(sharedService().requests("/kafka/engagement/").size(), 2U);
}

TEST_F(CouponTest, ARefusalByTheServiceIsNoFailureEverythingElseIs) {
    struct Case {
        Behaviour behaviour;
        bool isSaved;
    };
    const Case cases[] = {
        {{.status = 400}, true},
        {{.status = 500}, true},
        {{.ending = Behaviour::Ending::Cut}, false},
        {{.body = "no JSON", .contentType = "application/json"}, false},
        {{.body = "<html>", .contentType = "text/html"}, false},
    };
    for (const Case& each : cases) {
        sharedService().behave("/coupons/", each.behaviour);
        tap("btnCoupon");
        ASSERT_TRUE(settle([&] { return canBeLeft(); }));
        EXPECT_EQ(message() == "Coupon saved to My coupons in the Kestrin App", each.isSaved) << message();
        EXPECT_NE(message(), "");
        EXPECT_EQ(part("imgFailed")->isHidden(), each.isSaved);
        EXPECT_EQ(part("checkMark")->isHidden(), !each.isSaved);
        tapPart("btnClose");
    }
}

TEST_F(CouponTest, TheCompanionApplicationOpensOrItsStorePage) {
    const auto press = [&] {
        tap("btnCoupon");
        ASSERT_TRUE(settle([&] { return canBeLeft(); }));
        tapPart("btnKestrinApp");
        EXPECT_TRUE(overlay()->isHidden());
    };
    press();
    const std::string store = "https://store.kestrin.example/app/id" + appStoreID.string();
    EXPECT_THAT(links_->openedURLs(), ElementsAre(store));
    links_->addScheme("kestrin");
    press();
    tab_->openKestrinDev();
    EXPECT_THAT(links_->openedURLs(), ElementsAre(store, "kestrin://", store));

    const NSString link = std::exchange(appSchemaDeeplinkDev, "kestrintest://coupons"),
                   number = std::exchange(appStoreID, "7");
    tab_->openKestrinDev();
    links_->addScheme("kestrintest");
    tab_->openKestrinDev();
    EXPECT_EQ(links_->openedURLs()[3], "https://store.kestrin.example/app/id7");
    EXPECT_EQ(links_->openedURLs()[4], "kestrintest://coupons");
    appSchemaDeeplinkDev = "not a link";
    tab_->openKestrinDev();
    EXPECT_EQ(links_->openedURLs()[5], "https://store.kestrin.example/app/id7");
    appSchemaDeeplinkDev = link;
    appStoreID = number;
}

TEST_F(CouponTest, TheTabMayGoWhileACouponIsSaved) {
    sharedService().behave("/coupons/", {.delay = std::chrono::milliseconds(20)});
    tap("btnCoupon");
    const Weak<CouponView> overlay(this->overlay());
    tab_->removeFromSuperview();
    network_->setStatus(AFNetworkReachabilityStatusReachableViaWiFi);
    AFNetworkReachabilityManager::sharedManager().setReachabilityStatusChangeBlock(nullptr);
    tab_ = nullptr;
    ASSERT_TRUE(settleIdle());
    EXPECT_FALSE(overlay) << "answered and let go";
}

TEST_F(CouponTest, WithoutADelegateTheButtonsDoNothing) {
    const Ref<CouponView> lonely = CouponView::createCouponView();
    ASSERT_TRUE(lonely);
    lonely->performSelector("pressCloseButton");
    lonely->performSelector("pressKestrinApp");
    lonely->saveCoupon(nullptr);
    EXPECT_FALSE(lonely->asset());
    EXPECT_TRUE(links_->openedURLs().empty());
}

}  // namespace
}  // namespace flarebox::testing
