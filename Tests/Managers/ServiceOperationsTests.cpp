#include <Examples/Service/Service.h>
#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Managers/FlareboxManager.h>
#include <Foundation/NSAssertionHandler.h>
#include <Foundation/NSUserDefaults.h>
#include <Tests/Support/Pump.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace flarebox {
namespace {

using examples::Behaviour;
using examples::ReceivedRequest;
using ::testing::HasSubstr;

/// Lets the failing operation go on, as a host that logs assertions would.
struct QuietAssertions : NSAssertionHandler {
    void handleFailure(std::string_view, std::string_view, int, std::string_view description) override {
        descriptions.emplace_back(description);
    }
    std::vector<std::string> descriptions;
};

/// The singleton reads its address once, so all tests share one service.
examples::Service& service() {
    static examples::Service shared;
    static const bool started = [] {
        const bool ok = shared.start();
        flareboxBundle().setInfoDictionaryValue("API_URL", shared.baseURL());
        return ok;
    }();
    EXPECT_TRUE(started);
    return shared;
}

class ServiceOperationsTest : public ::testing::Test {
protected:
    void SetUp() override {
        service().forgetRequests();
        service().behaveNormally();
        NSUserDefaults::standardUserDefaults().removeObjectForKey("timeoutInterval");
        const Ref<FXUserSession> user = FXUserSession::init();
        user->setFirstName("Ada");
        user->setAge(31);
        user->setDeviceId("00000000-0000-0000-0000-000000000000");
        FlareboxConfig::defaultConfig().configFlareboxWithUserSession(user, "game-1", "1.4.2", false, 0);
        NSAssertionHandler::setCurrentHandler(&assertions_);
    }
    void TearDown() override {
        NSAssertionHandler::setCurrentHandler(nullptr);
        EXPECT_TRUE(testing::pumpUntilIdle());
    }

    FlareboxManager& manager() {
        service();
        return FlareboxManager::sharedInstance();
    }

    /// Waits for the one call of a completion and hands back its error.
    struct Outcome {
        int calls = 0;
        Ref<NSError> error;
    };
    static void expectOneCall(const Outcome& outcome) {
        ASSERT_TRUE(testing::pumpUntil([&] { return outcome.calls > 0; }));
        EXPECT_TRUE(testing::pumpUntilIdle());
        EXPECT_EQ(outcome.calls, 1);
    }

    QuietAssertions assertions_;
};

std::set<std::string> namesOf(const ReceivedRequest& request) {
    std::set<std::string> names;
    for (const auto& [name, value] : request.headers) names.insert(name);
    return names;
}

TEST_F(ServiceOperationsTest, SendsExactlyWhatTheServiceExpects) {
    Outcome outcome;
    Ref<FXSessionInfo> session;
    manager().createSesstion([&](const Ref<FXSessionInfo>& made, const Ref<NSError>& error) {
        ++outcome.calls;
        session = made;
        outcome.error = error;
    });
    expectOneCall(outcome);
    ASSERT_FALSE(outcome.error) << outcome.error->localizedDescription();
    EXPECT_FALSE(session->uid().text().empty());
    EXPECT_EQ(session->gameUid(), "game-1");

    Outcome engagementOutcome;
    const Ref<FXEngagementData> engagement = FXEngagementData::init();
    for (const char* name : {"action", "advertiser", "asset", "desktop", "developer", "duration", "game", "generic",
                             "mobile", "session", "version"}) {
        engagement->setValue("false", name);
    }
    engagement->setAction("flarebox");
    engagement->setMobile("true");
    engagement->setDuration("12");
    manager().sendEngagement(engagement, [&](const Ref<NSError>& error) {
        ++engagementOutcome.calls;
        engagementOutcome.error = error;
    });
    expectOneCall(engagementOutcome);

    Outcome couponOutcome;
    const Ref<FXCoupon> coupon = FXCoupon::init();
    coupon->setAsset(5);
    manager().saveCoupon(coupon, [&](const Ref<FXCoupon>& saved, const Ref<NSError>& error) {
        ++couponOutcome.calls;
        couponOutcome.error = error;
        if (saved) {
            EXPECT_EQ(saved->asset(), NSNumber(5));
        }
    });
    expectOneCall(couponOutcome);

    std::shared_ptr<AssetList> assets;
    Outcome assetsOutcome;
    manager().loadGameCommonAssets([&](const std::shared_ptr<AssetList>& list, const Ref<NSError>& error) {
        ++assetsOutcome.calls;
        assets = list;
        assetsOutcome.error = error;
    });
    expectOneCall(assetsOutcome);
    ASSERT_TRUE(assets);
    EXPECT_GE(assets->size(), 8U);

    const auto requests = service().requests();
    ASSERT_EQ(requests.size(), 4U);
    for (const ReceivedRequest& request : requests) {
        EXPECT_EQ(request.complaint, "") << request.path;
        EXPECT_EQ(request.header("Accept"), "application/json");
        EXPECT_EQ(request.connection, requests.front().connection) << "connections are kept";
    }
    const std::set<std::string> plain = {"Accept", "Accept-Encoding", "Content-Length", "Content-Type",
                                         "Host",   "User-Agent"};
    std::set<std::string> game = plain;
    game.insert({"Game-UID", "Game-Version"});
    EXPECT_EQ(namesOf(requests[0]), game);
    EXPECT_EQ(namesOf(requests[1]), plain);
    EXPECT_EQ(namesOf(requests[2]), plain);
    EXPECT_EQ(requests[2].body, R"({"session":null,"asset":5})");
    EXPECT_EQ(requests[3].query, "limit=20");
    EXPECT_EQ(requests[0].method + requests[3].method, "POSTGET");
    EXPECT_EQ(
        requests[0].body,
        R"({"first_name":"Ada","last_name":null,"age":31,"sex":null,"state":null,"city":null,"country":null,"ip_addr":null,)"
        R"("device_id":"00000000-0000-0000-0000-000000000000"})");
}

TEST_F(ServiceOperationsTest, MissingInputsAreReportedAndNothingIsSent) {
    FlareboxConfig& config = FlareboxConfig::defaultConfig();
    std::vector<std::string> descriptions;
    const auto note = [&](const Ref<NSError>& error) {
        ASSERT_TRUE(error);
        EXPECT_EQ(error->domain(), kApiErrorDomain);
        EXPECT_EQ(error->code(), kApiMissingParamErrorCode);
        descriptions.push_back(error->localizedDescription());
    };
    const auto noteSession = [&](const Ref<FXSessionInfo>& session, const Ref<NSError>& error) {
        EXPECT_FALSE(session);
        note(error);
    };
    config.setSessionEdit(nullptr);
    manager().createSesstion(noteSession);
    config.setGameVersion(nullptr);
    manager().createSesstion(noteSession);
    manager().loadGameCommonAssets([&](const std::shared_ptr<AssetList>&, const Ref<NSError>& error) { note(error); });
    config.setGameUID(nullptr);
    manager().createSesstion(noteSession);
    manager().loadGameCommonAssets([&](const std::shared_ptr<AssetList>&, const Ref<NSError>& error) { note(error); });
    manager().sendEngagement(nullptr, note);
    manager().saveCoupon(nullptr, [&](const Ref<FXCoupon>&, const Ref<NSError>& error) { note(error); });
    manager().saveCoupon(nullptr, nullptr);

    std::vector<std::string> expected;
    for (const char* name : {"sessionData", "gameVersion", "gameVersion", "gameUID", "gameUID", "data", "couponData"}) {
        expected.push_back(std::string("Missing required parameter '") + name + "'");
    }
    EXPECT_EQ(descriptions, expected);
    if (NSAssertionHandler::assertionsActive()) {
        ASSERT_EQ(assertions_.descriptions.size(), 8U);
        EXPECT_EQ(assertions_.descriptions.front(), "Invalid parameter not satisfying: sessionData");
    }
    EXPECT_TRUE(service().requests().empty());
}

TEST_F(ServiceOperationsTest, FailuresArriveAsThePlatformsErrors) {
    struct Case {
        const char* name;
        Behaviour behaviour;
        const char* domain;
        int code;
    };
    const Case cases[] = {
        {"status 500", {.status = 500}, NSURLErrorDomain, NSURLErrorBadServerResponse},
        {"status 404 with another type",
         {.status = 404, .contentType = "text/html"},
         NSURLErrorDomain,
         NSURLErrorBadServerResponse},
        {"page in place of JSON",
         {.body = "<html>", .contentType = "text/html"},
         NSURLErrorDomain,
         NSURLErrorCannotDecodeContentData},
        {"broken JSON", {.body = R"({"id": )"}, NSCocoaErrorDomain, NSPropertyListReadCorruptError},
        {"connection cut", {.ending = Behaviour::Ending::Cut}, NSURLErrorDomain, NSURLErrorNetworkConnectionLost},
    };
    for (const Case& failure : cases) {
        SCOPED_TRACE(failure.name);
        service().behave("/sessions/", failure.behaviour);
        Outcome outcome;
        manager().createSesstion([&](const Ref<FXSessionInfo>& session, const Ref<NSError>& error) {
            ++outcome.calls;
            EXPECT_FALSE(session);
            outcome.error = error;
        });
        expectOneCall(outcome);
        ASSERT_TRUE(outcome.error);
        EXPECT_EQ(outcome.error->domain(), failure.domain);
        EXPECT_EQ(outcome.error->code(), failure.code) << outcome.error->localizedDescription();
    }
}

TEST_F(ServiceOperationsTest, AnswersOfTheWrongShapeGiveEmptyRecords) {
    service().behave("/sessions/", {.body = "[1, 2]"});
    Outcome outcome;
    manager().createSesstion([&](const Ref<FXSessionInfo>& session, const Ref<NSError>& error) {
        ++outcome.calls;
        outcome.error = error;
        ASSERT_TRUE(session);
        EXPECT_FALSE(session->uid());
    });
    expectOneCall(outcome);
    EXPECT_FALSE(outcome.error);

    service().behave("/game/common-assets/",
                     {.body = R"([{"id": 7, "title": "Cup", "surplus": {}}, 3, null, {"id": "x"}])"});
    Outcome listed;
    manager().loadGameCommonAssets([&](const std::shared_ptr<AssetList>& assets, const Ref<NSError>&) {
        ++listed.calls;
        ASSERT_TRUE(assets);
        ASSERT_EQ(assets->size(), 4U);
        EXPECT_EQ((*assets)[0]->_id(), NSNumber(7));
        EXPECT_FALSE((*assets)[1]->_id());
    });
    expectOneCall(listed);
}

TEST_F(ServiceOperationsTest, AnswersAreBoundedInLengthAndNumber) {
    const auto codeFor = [&](const std::string& body) {
        service().behave("/game/common-assets/", {.body = body});
        Outcome outcome;
        manager().loadGameCommonAssets([&](const std::shared_ptr<AssetList>& assets, const Ref<NSError>& error) {
            ++outcome.calls;
            EXPECT_NE(assets == nullptr, error == nullptr);
            outcome.error = error;
        });
        expectOneCall(outcome);
        return outcome.error ? outcome.error->code() : 0;
    };
    const auto listOf = [](std::size_t count) {
        std::string list = "[{}";
        for (; count > 1; --count) list += ",{}";
        return list + "]";
    };
    EXPECT_EQ(codeFor(listOf(100)), 0);
    EXPECT_EQ(codeFor(listOf(101)), NSURLErrorDataLengthExceedsMaximum);
    EXPECT_EQ(codeFor("[" + std::string(std::size_t{4} << 20, ' ') + "]"), NSURLErrorDataLengthExceedsMaximum);
}

TEST_F(ServiceOperationsTest, RequestsAreBuiltByTheRules) {
    FlareboxManager& client = manager();
    NSUserDefaults::standardUserDefaults().setObject(15, "timeoutInterval");
    const auto request = client.requestWithMethod("POST", "/coupons/", NSDictionary{{"limit", 20}},
                                                  NSDictionary{{"Game-UID", "g"}, {"Accept", "text/plain"}});
    EXPECT_EQ(request->URL().absoluteString(), service().baseURL() + "/coupons/");
    EXPECT_EQ(request->timeoutInterval(), 15.0);
    EXPECT_EQ(request->valueForHTTPHeaderField("Accept"), "application/json");
    EXPECT_EQ(request->valueForHTTPHeaderField("Game-UID"), "g");
    EXPECT_EQ(request->HTTPBody().text(), R"({"limit":20})");
    NSUserDefaults::standardUserDefaults().removeObjectForKey("timeoutInterval");
    EXPECT_EQ(client.requestWithMethod("GET", "/a", nullptr, nullptr)->timeoutInterval(), 0.0);
}

TEST_F(ServiceOperationsTest, AHungServiceTimesOutAndOtherRequestsGoOn) {
    NSUserDefaults::standardUserDefaults().setObject(1, "timeoutInterval");
    service().behave("/sessions/", {.ending = Behaviour::Ending::Hang});
    Outcome hung, listed;
    manager().createSesstion([&](const Ref<FXSessionInfo>&, const Ref<NSError>& error) {
        ++hung.calls;
        hung.error = error;
    });
    manager().loadGameCommonAssets([&](const std::shared_ptr<AssetList>&, const Ref<NSError>& error) {
        ++listed.calls;
        listed.error = error;
        EXPECT_EQ(hung.calls, 0);
    });
    expectOneCall(hung);
    ASSERT_TRUE(hung.error);
    EXPECT_EQ(hung.error->code(), NSURLErrorTimedOut);
    EXPECT_EQ(listed.calls, 1);
    EXPECT_FALSE(listed.error);
}

}  // namespace
}  // namespace flarebox
