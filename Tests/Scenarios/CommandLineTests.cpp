#include "State.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace flarebox::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(CommandLineTest, RefusesWhatItDoesNotKnow) {
    const std::vector<std::vector<std::string>> lines = {{"--sizes", "1x1"},
                                                         {"--size", "0x100"},
                                                         {"--size", "100"},
                                                         {"--size"},
                                                         {"--scale", "0"},
                                                         {"--scale", "nan"},
                                                         {"--refresh", "soon"},
                                                         {"--network", "lan"},
                                                         {"--tracking", "yes"},
                                                         {"--clock", "slow"},
                                                         {"--advertising-id", "1"},
                                                         {"--log-level", "-1"},
                                                         {"--can-open", "https://x"},
                                                         {"--screenshot", ""},
                                                         {"--refresh", "99999999999"}};
    for (const auto& line : lines) {
        const TemporaryDirectory folder;
        const GameResult result = runProgram(folder, FLAREBOX_HOSTGAME, line);
        EXPECT_EQ(result.status, 2) << line[0];
        EXPECT_THAT(result.errors, HasSubstr(line[0]));
    }
}

TEST(CommandLineTest, ExplainsItself) {
    const TemporaryDirectory folder;
    const GameResult result = runProgram(folder, FLAREBOX_HOSTGAME, {"--help"});
    EXPECT_EQ(result.status, 0);
    for (const char* word : {"--headless", "--api-url", "--no-session", "--can-open", "await", "orientation",
                             "setSafeAreaInsets TOP LEFT BOTTOM RIGHT"}) {
        EXPECT_THAT(result.output, HasSubstr(word));
    }
}

TEST(CommandLineTest, LeavesNoFilesOfItsOwn) {
    const TemporaryDirectory folder;
    const std::string script = folder.write("s.script", "await idle 60\n");
    EXPECT_EQ(runGame(folder, {"--script", script}).status, 0);
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        names.insert(entry.path().filename().string());
    EXPECT_THAT(names, ::testing::UnorderedElementsAre("s.script", "stdout", "stderr"));
}

TEST(CommandLineTest, KeepsTheIdentifierInTheDefaultsThatItIsGiven) {
    const TemporaryDirectory folder;
    const std::string script = folder.write("s.script", "await idle 60\n");
    const std::vector<std::string> arguments = {"--script", script, "--defaults", folder.path("defaults.plist")};
    ASSERT_EQ(runGame(folder, arguments).status, 0);
    const std::string first = folder.read("defaults.plist");
    EXPECT_THAT(first, HasSubstr("ASAdvertisingIdentifier"));
    ASSERT_EQ(runGame(folder, arguments).status, 0);
    EXPECT_EQ(folder.read("defaults.plist"), first);
}

TEST(ScriptTest, FailureNamesItsLine) {
    struct Case {
        const char* script;
        const char* error;
    };
    const Case cases[] = {
        {"await idle 60\n\n  # nothing\nfly away  # too far\n", "s.script:4: fly away: unknown command"},
        {"wait\n", "s.script:1: wait: wants SECONDS"},
        {"wait -1\n", "s.script:1: wait -1: wants SECONDS"},
        {"tap btnFly\n", "s.script:1: tap btnFly: the tab has no field 'btnFly'"},
        {"tap loadingView.btnFly\n", "s.script:1: tap loadingView.btnFly: the tab has no field"},
        {"await idle 60\ntap btnClose\n", "s.script:2: tap btnClose: btnClose is off the screen"},
        {"call hideFlareboxButton\ntap btnOpen\n", "s.script:2: tap btnOpen: btnOpen is hidden"},
        {"tap constraintLeadingContentView\n", "is no view"},
        {"await idle 60\ncall open\nwait 1\ncell 400\n", "s.script:4: cell 400: collectionView has 14 items"},
        {"await lbErrorMessage shown 0.05\n", "s.script:1: await lbErrorMessage shown 0.05: not within 0.05 seconds"},
        {"await idle 60\nawait text lbAssetTitle \"a # \\\"b\\\"\" 0\n", "the text is \"Ovalune Halo One\""},
        {"await text lbAssetTitle \"open\n",
         "s.script:1: await text lbAssetTitle \"open: the closing quote is missing"},
        {"swipe contentView away\n", "wants FIELD left|right|up|down"},
        {"call explode\n", "s.script:1: call explode: explode is no operation of the tab; --help lists them"},
        {"call toggleFlarebox true true true\n", "toggleFlarebox wants [true|false [true|false]]"},
        {"dump no/such/folder.json\n", "s.script:1: dump no/such/folder.json: cannot write no/such/folder.json"},
        {"orientation sideways\n", "s.script:1: orientation sideways: wants unknown|portrait"},
    };
    for (const Case& each : cases) {
        const TemporaryDirectory folder;
        folder.write("s.script", each.script);
        const GameResult result = runGame(folder, {"--no-logging", "--script", "s.script"});
        EXPECT_EQ(result.status, 1) << each.script;
        EXPECT_THAT(result.errors, HasSubstr(each.error)) << each.script;
    }
}

TEST(ScriptTest, AnswersArePrinted) {
    const TemporaryDirectory folder;
    const std::string script =
        folder.write("s.script",
                     "call isOpened\ncall open\ncall isOpened\ncall isFlareboxButtonVisible\ncall "
                     "hideFlareboxButton\ncall isFlareboxButtonVisible\n");
    const GameResult result = runGame(folder, {"--script", script});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output,
              "isOpened false\nisOpened true\nisFlareboxButtonVisible true\nisFlareboxButtonVisible false\n");
}

TEST(ScriptTest, TouchesFindWhatIsShownLarger) {
    const TemporaryDirectory folder;
    folder.write("s.script",
                 "await idle 60\ncall setInterfaceScale 2\ncall open\nwait 0.5\ntap btn2d\ntap btnClose\nwait 0.5\n"
                 "call isOpened\n");
    const GameResult result =
        runGame(folder, {"--no-logging", "--size", "1334x750", "--script", "s.script", "--record", "recorded.script"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("isOpened false"));
    EXPECT_THAT(folder.read("recorded.script"), AllOf(HasSubstr("tap btn2d\n"), HasSubstr("tap btnClose\n")));
}

TEST(ScriptTest, NullConfigurationIsSurvived) {
    const TemporaryDirectory folder;
    const std::string script =
        folder.write("s.script", "await idle 60\ncall open\nwait 1\nawait idle 60\ndump s.json\n");
    const GameResult result = runGame(folder, {"--no-session", "--no-logging", "--script", script});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(State(folder, "s.json").json("sessionInfo"), "null");
}

}  // namespace
}  // namespace flarebox::testing
