#include "State.h"

#include <Examples/Service/Service.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace flarebox::testing {
namespace {

using examples::Service;

/// What a dump has to hold at a path, as JSON.
struct Expectation {
    const char* file;
    const char* path;
    const char* json;
};

struct Scenario {
    const char* name;
    std::vector<std::string> options;
    std::vector<Expectation> expectations;
};

std::ostream& operator<<(std::ostream& stream, const Scenario& scenario) {
    return stream << scenario.name;
}

constexpr const char* offlineText = "\"You have no internet connection\"";
constexpr const char* savedText = "\"Coupon saved to My coupons in the Kestrin App\"";
constexpr const char* trackingText =
    "\"Advertising tracking may be disabled. Please turn off the 'Limit Ad Tracking' from Settings -> Privacy -> "
    "Advertising.\"";

const Scenario scenarios[] = {
    {"attached",
     {},
     {{"attached.json", "isOpened", "false"},
      {"attached.json", "isHasBeenOpened", "false"},
      {"attached.json", "tabsInWindow", "1"},
      {"attached.json", "views.btnOpen.visible", "true"},
      {"loaded.json", "currentAssetMode", "0"},
      {"loaded.json", "netWorkStatus", "2"},
      {"loaded.json", "refreshDataTime", "180"},
      {"loaded.json", "openedURLs", "[]"},
      {"loaded.json", "views.assetView.hidden", "false"},
      {"loaded.json", "views.lbAssetTitle.text", "\"Ovalune Halo One\""}}},
    {"opening",
     {},
     {{"tapped-open.json", "isOpened", "true"},
      {"tapped-open.json", "isHasBeenOpened", "true"},
      {"tapped-open.json", "views.constraintLeadingContentView.constant", "0"},
      {"tapped-close.json", "isOpened", "false"},
      {"closed.json", "isOpened", "false"},
      {"closed.json", "isHasBeenOpened", "true"},
      {"open-twice.json", "isOpened", "true"},
      {"closed-twice.json", "isOpened", "false"},
      {"toggled-open.json", "isOpened", "true"},
      {"toggled-closed.json", "isOpened", "false"},
      {"opened-at-once.json", "isOpened", "true"},
      {"tapped-while-open.json", "isOpened", "false"}}},
    {"swiping",
     {},
     {{"right.json", "isOpened", "true"},
      {"up.json", "isOpened", "true"},
      {"down.json", "isOpened", "true"},
      {"left.json", "isOpened", "false"},
      {"dragged.json", "isOpened", "true"}}},
    {"attaching",
     {},
     {{"detached.json", "tabsInWindow", "0"},
      {"detached.json", "views.btnOpen.visible", "false"},
      {"detached.json", "isHasBeenOpened", "true"},
      {"not-yet.json", "tabsInWindow", "0"},
      {"again.json", "tabsInWindow", "1"},
      {"again.json", "isOpened", "false"},
      {"again.json", "views.btnOpen.visible", "true"},
      {"shown-twice.json", "tabsInWindow", "1"},
      {"shown-twice.json", "isOpened", "false"},
      {"opened.json", "isOpened", "true"},
      {"another.json", "tabsInWindow", "1"},
      {"another.json", "isOpened", "false"},
      {"another.json", "isHasBeenOpened", "false"},
      {"in-view.json", "tabsInWindow", "1"},
      {"in-view.json", "isOpened", "false"},
      {"open-in-view.json", "isOpened", "true"}}},
    {"button",
     {},
     {{"hidden.json", "isOpened", "false"},
      {"hidden.json", "views.btnOpen.hidden", "true"},
      {"open-without.json", "isOpened", "true"},
      {"open-without.json", "views.btnOpen.hidden", "true"},
      {"shown.json", "isOpened", "false"},
      {"shown.json", "views.btnOpen.hidden", "false"},
      {"faded.json", "views.btnOpen.alpha", "0.5"}}},
    {"offline",
     {"--network", "none"},
     {{"offline.json", "netWorkStatus", "0"},
      {"offline.json", "assestsList", "[]"},
      {"offline.json", "sessionInfo", "null"},
      {"offline.json", "currentAsset", "null"},
      {"offline.json", "views.lbErrorMessage.text", offlineText},
      {"offline.json", "views.lbErrorMessage.visible", "true"},
      {"online.json", "netWorkStatus", "2"},
      {"online.json", "views.lbErrorMessage.hidden", "true"},
      {"online.json", "views.loadingView.hidden", "true"},
      {"offline-again.json", "netWorkStatus", "0"},
      {"offline-again.json", "views.lbErrorMessage.text", offlineText}}},
    {"tracking",
     {"--tracking", "off"},
     {{"forbidden.json", "views.lbErrorMessage.text", trackingText},
      {"forbidden.json", "sessionInfo", "null"},
      {"forbidden.json", "refreshDataTime", "180"},
      {"allowed.json", "views.lbErrorMessage.hidden", "true"},
      {"allowed.json", "views.assetView.hidden", "false"}}},
    {"browsing",
     {"--size", "960x540", "--can-open", "https"},
     {{"first.json", "isOpened", "true"},
      {"first.json", "cells.0.row", "0"},
      {"first.json", "cells.0.focused", "true"},
      {"first.json", "cells.0.loading", "false"},
      {"first.json", "cells.0.hasImage", "true"},
      {"first.json", "cells.1.focused", "false"},
      {"first.json", "views.imgAssetContent.hasImage", "true"},
      {"first.json", "views.btnBuy.enabled", "true"},
      {"first.json", "views.btn2d.selected", "true"},
      {"third.json", "views.lbAssetTitle.text", "\"Zingfall Nightberry\""},
      {"third.json", "cells.2.focused", "true"},
      {"third.json", "cells.0.focused", "false"},
      {"tenth.json", "views.lbAssetTitle.text", "\"Sundrella Solstice\""},
      {"tenth.json", "views.imgAssetContent.hasImage", "true"},
      {"tenth.json", "openedURLs", "[]"},
      {"scrolled.json", "openedURLs", "[\"https://sundrella.example/solstice\"]"},
      {"scrolled.json", "isOpened", "true"},
      {"beside.json", "isOpened", "true"},
      {"beside.json", "views.lbAssetTitle.text", "\"Sundrella Solstice\""}}},
    {"coupon",
     {"--can-open", "kestrin"},
     {{"saving.json", "views.couponView.visible", "true"},
      {"saving.json", "views.couponView.lbMessage.text", "\"Saving coupon...\""},
      {"saving.json", "views.couponView.btnClose.hidden", "true"},
      {"saving.json", "views.couponView.btnKestrinApp.hidden", "true"},
      {"saving.json", "views.couponView.indicator.visible", "true"},
      {"saved.json", "views.couponView.lbMessage.text", savedText},
      {"saved.json", "views.couponView.btnClose.visible", "true"},
      {"saved.json", "views.couponView.checkMark.visible", "true"},
      {"saved.json", "openedURLs", "[]"},
      {"left.json", "views.couponView.hidden", "true"},
      {"left.json", "openedURLs", "[\"kestrin://\"]"},
      {"failed.json", "views.couponView.lbMessage.text", "\"The network connection was lost.\""},
      {"failed.json", "views.couponView.imgFailed.visible", "true"},
      {"failed.json", "views.couponView.btnKestrinApp.visible", "true"},
      {"refused.json", "views.couponView.lbMessage.text", savedText},
      {"bought.json", "openedURLs.#", "2"},
      {"bought.json", "openedURLs.1", "\"https://ovalune.example/halo-one\""}}},
    {"modes",
     {},
     {{"everything.json", "assestsList", "[\"everything\",\"without-video\",\"without-picture\",\"video-only\"]"},
      {"everything.json", "currentAssetMode", "0"},
      {"everything.json", "views.btnVideo.enabled", "true"},
      {"model.json", "currentAssetMode", "1"},
      {"model.json", "views.btn3d.selected", "true"},
      {"model.json", "views.scnContainer.hidden", "false"},
      {"model.json", "views.imgAssetContent.hidden", "true"},
      {"without-video.json", "currentAssetMode", "0"},
      {"without-video.json", "views.btnVideo.enabled", "false"},
      {"without-video.json", "views.imgAssetContent.hidden", "false"},
      {"without-picture.json", "views.btn2d.enabled", "false"},
      {"without-picture.json", "views.btn2d.selected", "true"},
      {"without-picture.json", "views.imgAssetContent.hidden", "false"},
      {"without-picture.json", "views.lbAssetTitle.text", "\"Without a picture\""},
      {"video.json", "currentAssetMode", "2"},
      {"video.json", "views.videoContainer.hidden", "false"},
      {"video-stays.json", "currentAssetMode", "2"},
      {"video-goes.json", "currentAssetMode", "0"}}},
    {"failing",
     {},
     {{"session.json", "views.loadingView.hidden", "true"},
      {"session.json", "refreshDataTime", "180"},
      {"status.json", "assestsList.#", "14"},
      {"slow.json", "views.loadingView.visible", "true"},
      {"slow.json", "views.lbErrorMessage.hidden", "true"},
      {"slow-done.json", "views.assetView.hidden", "false"},
      {"broken.json", "assestsList.#", "14"},
      {"wrong-types.json", "assestsList", "[\"7\",\"fine\"]"},
      {"wrong-types.json", "views.assetView.hidden", "false"},
      {"cut.json", "assestsList.#", "2"},
      {"mended.json", "assestsList.#", "14"},
      {"mended.json", "views.lbErrorMessage.text", "\"\""},
      {"mended.json", "currentAssetMode", "0"}}},
    {"models",
     {"--size", "667x375", "--scale", "1"},
     {{"loaded.json", "sceneChildren", "1"},
      {"loaded.json", "is3DViewFullScreen", "false"},
      {"shown.json", "views.scnContent.scnView.visible", "true"},
      {"shown.json", "views.scnContent.unavailableView.hidden", "true"},
      {"shown.json", "views.scnContent.btn3DModeWidthContraint.constant", "22.5"},
      {"full.json", "is3DViewFullScreen", "true"},
      {"full.json", "views.scnContent.frame", "[0,0,667,375]"},
      {"full.json", "views.scnContent.btn3DMode.selected", "true"},
      {"full.json", "views.scnContent.btn3DModeWidthContraint.constant", "36"},
      {"full-portrait.json", "views.scnContent.frame", "[0,0,375,667]"},
      {"full-portrait.json", "isOpened", "true"},
      {"back.json", "is3DViewFullScreen", "false"},
      {"back.json", "views.scnContent.btn3DMode.selected", "false"},
      {"closed.json", "is3DViewFullScreen", "false"},
      {"closed.json", "sceneChildren", "1"},
      {"pruned.json", "assetNodes", "[\"pebble\"]"},
      {"pruned.json", "documents", "[\"pebble\"]"},
      {"none.json", "views.scnContent.scnView.visible", "false"},
      {"none.json", "views.scnContent.lbMessage.text", "\"There is no 3D model of this product\""},
      {"none.json", "views.scnContent.btn3DMode.hidden", "true"},
      {"again.json", "views.scnContent.scnView.visible", "true"},
      {"again.json", "sceneChildren", "1"}}},
    {"video",
     {"--size", "667x375", "--scale", "1"},
     {{"place.json", "video.rate", "0"},
      {"place.json", "video.time", "0"},
      {"place.json", "video.error", "null"},
      {"place.json", "views.videoView.btnPlay.visible", "true"},
      {"playing.json", "video.rate", "1"},
      {"playing.json", "views.btnOpen.hidden", "true"},
      {"paused.json", "video.rate", "0"},
      {"done.json", "video.rate", "0"},
      {"done.json", "views.btnOpen.hidden", "false"},
      {"done.json", "isOpened", "true"},
      {"closed.json", "video.rate", "0"},
      {"closed.json", "isOpened", "false"},
      {"removed.json", "video.rate", "0"},
      {"removed.json", "tabsInWindow", "0"},
      {"broken.json", "video.rate", "0"},
      {"broken.json", "video.error", "\"The video does not exist any more.\""},
      {"left.json", "isOpened", "true"},
      {"left.json", "views.btnOpen.hidden", "false"}}},
    {"refreshing",
     {"--refresh", "4"},
     {{"counting.json", "isOpened", "false"},
      {"counting.json", "refreshDataTime", "4"},
      {"refreshed.json", "refreshDataTime", "4"}}},
};

class ScenarioTest : public ::testing::TestWithParam<Scenario> {};

TEST_P(ScenarioTest, EndsInTheExpectedStates) {
    const Scenario& scenario = GetParam();
    const TemporaryDirectory folder;
    std::vector<std::string> arguments = {"--size", "667x375", "--script",
                                          scriptPath(std::string(scenario.name) + ".script")};
    arguments.insert(arguments.end(), scenario.options.begin(), scenario.options.end());
    const GameResult result = runGame(folder, arguments);
    ASSERT_EQ(result.status, 0) << result.errors;
    for (const auto& [file, path, json] : scenario.expectations) {
        EXPECT_EQ(State(folder, file).json(path), json) << path << " in " << file;
    }
}

INSTANTIATE_TEST_SUITE_P(All, ScenarioTest, ::testing::ValuesIn(scenarios),
                         [](const auto& each) { return std::string(each.param.name); });

/// Runs a script of this folder and leaves its dumps in the folder.
void runScenario(const TemporaryDirectory& folder, const std::string& name, std::vector<std::string> options) {
    options.insert(options.end(), {"--script", scriptPath(name + ".script")});
    const GameResult result = runGame(folder, options);
    ASSERT_EQ(result.status, 0) << result.errors;
}

TEST(PlacementTest, ClosedTabLiesBesideTheScreenWithItsButtonAtTheEdge) {
    for (const auto& [size, width, height] :
         {std::tuple{"667x375", 667.0, 375.0}, std::tuple{"1024x768", 1024.0, 768.0}}) {
        const TemporaryDirectory folder;
        runScenario(folder, "attached", {"--size", size});
        const State state(folder, "attached.json");
        EXPECT_GT(state.tabWidth(), 0);
        EXPECT_DOUBLE_EQ(state.leading(), -state.tabWidth());
        EXPECT_NEAR(state.frame("btnOpen", 0), 0, 0.5);
        EXPECT_NEAR(state.frame("btnOpen", 1) + state.frame("btnOpen", 3) / 2, height / 2, 0.5);
        EXPECT_NEAR(state.frame("btnOpen", 2), 36 * height / 600, 0.5);
        EXPECT_LE(state.frame("contentView", 0) + state.frame("contentView", 2), 0.5) << "the closed panel shows";
    }
}

TEST(PlacementTest, OpenTabLiesAtTheEdgeAndCarriesTheButtonAlong) {
    const TemporaryDirectory folder;
    runScenario(folder, "opening", {"--size", "667x375"});
    for (const char* file : {"tapped-open.json", "open-twice.json", "toggled-open.json", "opened-at-once.json"}) {
        const State state(folder, file);
        EXPECT_DOUBLE_EQ(state.leading(), 0) << file;
        EXPECT_NEAR(state.frame("btnOpen", 0), state.tabWidth(), 0.5) << file;
    }
    for (const char* file :
         {"tapped-close.json", "closed.json", "closed-twice.json", "toggled-closed.json", "tapped-while-open.json"}) {
        const State state(folder, file);
        EXPECT_DOUBLE_EQ(state.leading(), -state.tabWidth()) << file;
        EXPECT_NEAR(state.frame("btnOpen", 0), 0, 0.5) << file;
    }
}

TEST(PlacementTest, FollowsTheScreenWhenItIsTurned) {
    const TemporaryDirectory folder;
    runScenario(folder, "turning", {"--size", "960x540"});
    const State portrait(folder, "portrait.json"), landscape(folder, "landscape.json"), flat(folder, "flat.json");
    EXPECT_EQ(portrait.json("isOpened"), "false");
    EXPECT_DOUBLE_EQ(portrait.leading(), -portrait.tabWidth());
    EXPECT_NEAR(portrait.number("views.openButtonWidthContraint.constant"), 36 * 960 / 600.0, 1e-9);
    EXPECT_EQ(landscape.json("isOpened"), "true");
    EXPECT_DOUBLE_EQ(landscape.leading(), 0);
    EXPECT_NEAR(landscape.tabWidth() / landscape.number("views.heightFixedConstraint.constant"), 275.0 / 420, 1e-3);
    EXPECT_NE(landscape.tabWidth(), portrait.tabWidth());
    EXPECT_DOUBLE_EQ(flat.tabWidth(), landscape.tabWidth()) << "a device that lies flat keeps its layout";

    const State end(folder, "end.json"), turned(folder, "turned.json");
    EXPECT_EQ(end.json("views.rightAssetListShadowView.hidden"), "true");
    const int last = std::stoi(turned.json("assestsList.#")) - 1, seen = std::stoi(turned.json("cells.#"));
    ASSERT_LT(turned.number("cells." + std::to_string(seen - 1) + ".row"), last) << "the list does not end here";
    EXPECT_EQ(turned.json("views.rightAssetListShadowView.hidden"), "false");
}

TEST(AnswersTest, ListWithoutAssetsIsAskedForAgainByOpening) {
    Service service;
    ASSERT_TRUE(service.start());
    service.behave("/game/common-assets/", {.body = "[]"});
    const TemporaryDirectory folder;
    runScenario(folder, "empty", {"--api-url", service.baseURL()});
    const State empty(folder, "empty.json"), opened(folder, "opened.json");
    EXPECT_EQ(empty.json("assestsList"), "[]");
    EXPECT_EQ(empty.json("views.emptyView.hidden"), "false");
    EXPECT_EQ(empty.json("views.assetView.hidden"), "true");
    EXPECT_EQ(opened.json("isOpened"), "true");
    EXPECT_EQ(opened.json("currentAsset"), "null");
    EXPECT_EQ(service.requests("/game/common-assets/").size(), 2U);
    EXPECT_EQ(service.requests("/sessions/").size(), 1U);
}

TEST(AnswersTest, RefusedSessionIsShownAsAnError) {
    Service service;
    ASSERT_TRUE(service.start());
    service.behave("/sessions/", {.status = 500});
    const TemporaryDirectory folder;
    const std::string script =
        folder.write("s.script", "await text lbErrorMessage \"Something went wrong\" 60\ndump s.json\n");
    const GameResult result = runGame(folder, {"--api-url", service.baseURL(), "--script", script});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(State(folder, "s.json").json("sessionInfo"), "null");
    EXPECT_TRUE(service.requests("/game/common-assets/").empty());
}

TEST(AnswersTest, RefreshAsksForTheAssetsAgainAndKeepsTheSession) {
    Service service;
    ASSERT_TRUE(service.start());
    const TemporaryDirectory folder;
    runScenario(folder, "refreshing", {"--refresh", "4", "--api-url", service.baseURL()});
    EXPECT_EQ(service.requests("/sessions/").size(), 1U);
    EXPECT_EQ(service.requests("/game/common-assets/").size(), 2U);
}

TEST(AnswersTest, AListIsRefreshedWhileNobodyLooksAndAnEmptyOneAlways) {
    const TemporaryDirectory folder;
    std::vector<std::string> arguments = {"--log-level", "1", "--script", scriptPath("refreshes.script")};
    const GameResult result = runGame(folder, arguments);
    ASSERT_EQ(result.status, 0) << result.errors;
    std::vector<std::string> steps;
    std::istringstream lines(result.errors);
    for (std::string line; std::getline(lines, line);) {
        for (const auto& [text, step] :
             {std::pair{"create a game session", "session"}, std::pair{"Refresh game assets data", "refresh"},
              std::pair{"Load common game assets", "load"}}) {
            if (line == "KestrinSDK Info: " + std::string(text)) steps.emplace_back(step);
        }
    }
    // At the start; once closed; as the network changes; twice for the empty list.
    EXPECT_THAT(steps, ::testing::ElementsAre("session", "load", "refresh", "load", "load", "refresh", "load",
                                              "refresh", "load"));
    EXPECT_EQ(State(folder, "empty.json").json("views.emptyView.hidden"), "false");
}

TEST(SheetTest, EveryStateCanBeDrawn) {
    const TemporaryDirectory folder;
    for (const auto& [script, tracking] : {std::pair{"states", "on"}, std::pair{"tracking", "off"}}) {
        const std::string path = std::string(FLAREBOX_SHEET) + "/" + script + ".script";
        const GameResult result = runGame(
            folder, {"--size", "375x667", "--scale", "1", "--no-logging", "--tracking", tracking, "--script", path});
        EXPECT_EQ(result.status, 0) << result.errors;
    }
}

}  // namespace
}  // namespace flarebox::testing
