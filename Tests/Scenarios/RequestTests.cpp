#include "State.h"

#include <Examples/Service/Service.h>
#include <Foundation/NSJSONSerialization.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <set>

namespace flarebox::testing {
namespace {

using examples::ReceivedRequest;
using examples::Service;
using ::testing::IsSupersetOf;
using ::testing::UnorderedElementsAreArray;

constexpr const char* identifier = "6F9619FF-8B86-D011-B42D-00C04FC964FF";

std::vector<std::string> headerNames(const ReceivedRequest& request) {
    // What a transport adds by itself.
    const std::set<std::string> ofTransport = {
        "Host", "User-Agent", "Connection", "Content-Length", "Accept-Encoding", "Accept-Language", "Expect"};
    std::vector<std::string> names;
    for (const auto& [name, value] : request.headers) {
        if (!ofTransport.contains(name)) names.push_back(name);
    }
    return names;
}

NSDictionary bodyOf(const ReceivedRequest& request) {
    return NSJSONSerialization::JSONObjectWithText(request.body, NSJSONReadingStrict, nullptr).as<NSDictionary>();
}

std::vector<std::string> keysOf(const NSDictionary& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.entries()) keys.push_back(key.description());
    return keys;
}

/// The game's whole conversation with a recording service, from the start to an open tab.
class RequestTest : public ::testing::Test {
protected:
    GameResult play(std::vector<std::string> options, const std::string& script) {
        EXPECT_TRUE(service_.start());
        options.insert(options.end(), {"--api-url", service_.baseURL(), "--script", folder_.write("s.script", script)});
        return runGame(folder_, options);
    }

    Service service_;
    TemporaryDirectory folder_;
};

TEST_F(RequestTest, CarryExactlyWhatTheServiceWants) {
    const GameResult result = play({"--game-uid", "game-1", "--game-version", "2.0", "--advertising-id", identifier},
                                   "await idle 60\ncall open\nawait idle 60\ndump s.json\n");
    ASSERT_EQ(result.status, 0) << result.errors;
    for (const ReceivedRequest& request : service_.requests()) EXPECT_EQ(request.complaint, "") << request.path;

    const auto sessions = service_.requests("/sessions/");
    ASSERT_EQ(sessions.size(), 1U);
    EXPECT_EQ(sessions[0].method, "POST");
    EXPECT_EQ(sessions[0].query, "");
    EXPECT_THAT(headerNames(sessions[0]),
                UnorderedElementsAreArray({"Accept", "Content-Type", "Game-UID", "Game-Version"}));
    EXPECT_EQ(sessions[0].header("Accept"), "application/json");
    EXPECT_EQ(sessions[0].header("Game-UID"), "game-1");
    EXPECT_EQ(sessions[0].header("Game-Version"), "2.0");
    EXPECT_THAT(keysOf(bodyOf(sessions[0])),
                UnorderedElementsAreArray(
                    {"first_name", "last_name", "age", "sex", "state", "city", "country", "ip_addr", "device_id"}));
    EXPECT_EQ(bodyOf(sessions[0]).objectForKey("device_id").description(), identifier);

    const auto lists = service_.requests("/game/common-assets/");
    ASSERT_EQ(lists.size(), 1U);
    EXPECT_EQ(lists[0].method, "GET");
    EXPECT_EQ(lists[0].query, "limit=20");
    EXPECT_EQ(lists[0].body, "");
    EXPECT_EQ(lists[0].header("Game-UID"), "game-1");
    EXPECT_THAT(headerNames(lists[0]), IsSupersetOf({"Accept", "Game-UID", "Game-Version"}));

    const State state(folder_, "s.json");
    EXPECT_NE(state.json("sessionInfo"), "null");
    EXPECT_EQ(state.json("currentAsset"), state.json("assestsList.0"));
}

TEST_F(RequestTest, TellWhatThePlayerDoes) {
    const GameResult result =
        play({"--can-open", "https"},
             "await idle 60\ncall open\nawait idle 60\nwait 12.9\ntap btnCoupon\nawait idle 60\n"
             "tap couponView.btnClose\ntap btn3d\nawait idle 60\ncall close\nwait 0.5\nawait idle 60\n");
    ASSERT_EQ(result.status, 0) << result.errors;
    std::vector<std::string> told;
    for (const ReceivedRequest& request : service_.requests()) {
        EXPECT_EQ(request.complaint, "") << request.path;
        if (request.path == "/kafka/engagement/") {
            told.push_back(bodyOf(request).objectForKey("action").description() + " " +
                           bodyOf(request).objectForKey("duration").description());
        } else if (request.path == "/coupons/") {
            told.emplace_back("coupon saved");
            EXPECT_THAT(keysOf(bodyOf(request)), UnorderedElementsAreArray({"session", "asset"}));
        }
    }
    EXPECT_THAT(told, UnorderedElementsAreArray({"flarebox 0", "coupon 12", "coupon saved", "3d 12"}));
}

TEST_F(RequestTest, AreNotSentWithoutPermission) {
    const GameResult result =
        play({"--tracking", "off"}, "await lbErrorMessage shown 60\ncall open\nawait idle 60\nwait 2\n");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(service_.requests().empty());
}

TEST_F(RequestTest, AreNotSentWithoutANetwork) {
    const GameResult result =
        play({"--network", "none"}, "await lbErrorMessage shown 60\ncall open\nawait idle 60\nwait 2\n");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(service_.requests().empty());
}

TEST_F(RequestTest, UnderWayDoNotHoldUpTheEnd) {
    service_.behave("/game/common-assets/", {.ending = examples::Behaviour::Ending::Hang});
    const auto start = std::chrono::steady_clock::now();
    const GameResult result = play({}, "await loadingView shown 60\nwait 0.2\ndump s.json\n");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(State(folder_, "s.json").json("views.loadingView.visible"), "true");
    // A thousand times what it takes, and far below the transport's own patience.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

}  // namespace
}  // namespace flarebox::testing
