#include <Foundation/NSJSONSerialization.h>
#include <Tests/Views/TabTesting.h>
#include <UIKit/UIDevice.h>

#include <gmock/gmock.h>

#include <map>

namespace flarebox::testing {
namespace {

class EngagementTest : public TabTest {
protected:
    void SetUp() override {
        TabTest::SetUp();
        showLoadedTab();
        sharedService().forgetRequests();
        FlareboxManager::sharedInstance().setFlareboxOpenedDate(NSDate::date());
    }
    void TearDown() override {
        FlareboxConfig::defaultConfig().setEnableLogging(false);
        TabTest::TearDown();
    }
    /// The event that the service was told of, as JSON texts by key; empty when it was told of none.
    std::map<std::string, std::string> send(EngagementAction type) {
        sharedService().forgetRequests();
        tab_->sendEngagementEvent(type);
        EXPECT_TRUE(settleIdle());
        std::map<std::string, std::string> fields;
        for (const auto& request : sharedService().requests()) {
            EXPECT_EQ(request.path, "/kafka/engagement/");
            EXPECT_EQ(request.complaint, "");
            const auto body =
                NSJSONSerialization::JSONObjectWithText(request.body, NSJSONReadingStrict, nullptr).as<NSDictionary>();
            for (const auto& [key, value] : body.entries()) {
                fields[key.description()] = value.as<NSNull>()     ? "null"
                                            : value.as<NSString>() ? "'" + value.description() + "'"
                                                                   : value.description();
            }
        }
        return fields;
    }
};

std::string quoted(const NSString& text) {
    return "'" + text.string() + "'";
}

TEST_F(EngagementTest, CarriesAssetSessionAndSurroundings) {
    const FXAssetInfo& asset = *tab_->currentAsset();
    FXSessionInfo& session = *FlareboxManager::sharedInstance().sessionInfo();
    session.setAge(31);
    session.setCountry("NZ");
    session.setIpAddr("10.0.0.7");
    session.setSex("f");
    clock_.advance(12.9);
    const std::map<std::string, std::string> expected = {
        {"action", "'coupon'"},
        {"advertiser", quoted(asset.advertiserUid())},
        {"asset", quoted(asset.uid())},
        {"campaign", quoted(asset.campaignUid())},
        {"age", "'31'"},
        {"browser", "null"},
        {"browser_ver", "null"},
        {"country", quoted(session.country())},
        {"desktop", "'false'"},
        {"developer", quoted(session.developerUid())},
        {"device_id", quoted(session.deviceId())},
        {"duration", "'12'"},
        {"game", "'game-1'"},
        {"generic", "'false'"},
        {"ip_addr", quoted(session.ipAddr())},
        {"mobile", "'true'"},
        {"os", "'iOS'"},
        {"os_ver", quoted(UIDevice::currentDevice().systemVersion())},
        {"session", quoted(session.uid())},
        {"sex", quoted(session.sex())},
        {"spot", "null"},
        {"version", "'1.0'"},
    };
    EXPECT_EQ(send(EngagementActionCoupon), expected);
    EXPECT_NE(UIDevice::currentDevice().systemVersion().text(), "");

    session.setAge(nullptr);
    FlareboxManager::sharedInstance().setFlareboxOpenedDate(
        NSDate::dateWithTimeIntervalSince1970(NSDate::date().timeIntervalSince1970() + 60));
    auto behind = send(EngagementAction3D);
    EXPECT_EQ(behind["age"], "null");
    EXPECT_EQ(behind["action"], "'3d'");
    EXPECT_EQ(behind["duration"], "'0'") << "the clock was turned back";
    EXPECT_EQ(send(EngagementAction2D)["action"], "'2d'");
    EXPECT_EQ(send(EngagementActionVideo)["action"], "'video'");
    EXPECT_EQ(send(EngagementActionFlarebox)["action"], "'flarebox'");
}

TEST_F(EngagementTest, SaysHowItWent) {
    EXPECT_EQ(loggedBy([&] { send(EngagementActionVideo); }),
              "KestrinSDK Info: Send engagement event: video\nKestrinSDK Info: Send engagement event successful\n");
    sharedService().behave("/kafka/engagement/", {.status = 500});
    EXPECT_THAT(loggedBy([&] { send(EngagementActionVideo); }),
                ::testing::MatchesRegex("KestrinSDK Info: Send engagement event: video\nKestrinSDK Error: .+\n"));
    EXPECT_EQ(sharedService().requests("/kafka/engagement/").size(), 1U) << "nothing is told twice";
}

TEST_F(EngagementTest, VanishesWithoutANetworkASessionOrAnAsset) {
    const auto isSilent = [&] { return loggedBy([&] { EXPECT_TRUE(send(EngagementActionCoupon).empty()); }) == ""; };
    for (const auto status : {AFNetworkReachabilityStatusUnknown, AFNetworkReachabilityStatusNotReachable}) {
        network_->setStatus(status);
        ASSERT_TRUE(settle([&] { return tab_->netWorkStatus() == status; }));
        EXPECT_TRUE(isSilent());
    }
    network_->setStatus(AFNetworkReachabilityStatusReachableViaWiFi);
    ASSERT_TRUE(settle([&] { return tab_->isNetworkConnected(); }));
    ASSERT_TRUE(settleIdle());
    FlareboxManager::sharedInstance().setSessionInfo(nullptr);
    EXPECT_TRUE(isSilent());
    FlareboxManager::sharedInstance().setSessionInfo(FXSessionInfo::init());
    sharedService().behave("/game/common-assets/", {.body = "[]"});
    tab_->loadAssets();
    ASSERT_TRUE(settle([&] { return !tab_->currentAsset(); }));
    EXPECT_TRUE(isSilent());
}

}  // namespace
}  // namespace flarebox::testing
