// What is recorded of a session of use, played again, is the same session.

#include "State.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace flarebox::testing {
namespace {

// Each kind of movement once, as a player makes them who waits for what comes.
constexpr const char* session =
    "await idle 60\ntap btnOpen\nwait 0.5\nawait idle 60\ncell 3\nwait 0.7\nawait idle 60\ntap btnNext\nwait 0.3\n"
    "await idle 60\ncell 9\nwait 0.4\nawait idle 60\nswipe collectionView right\nwait 2\nscroll 150 340 120 0\n"
    "wait 0.5\nawait idle 60\ndrag 150 340 100 345\n"
    "call open\ncall takeFocus\npress right\nwait 0.5\npress down\ncall giveBackFocus\n";
/// A shot in the game is no command of the panel, and neither is the time after the last one.
constexpr const char* afterwards = "wait 0.8\nawait idle 60\ntap 900 300\n";

/// Without the lines that let everything come to rest: whether something is under way at a touch depends on the
/// machine.
std::string withoutRests(std::string script) {
    constexpr std::string_view rest = "await idle 60\n";
    for (std::size_t at = 0; (at = script.find(rest)) != script.npos;) script.erase(at, rest.size());
    return script;
}

std::string play(const TemporaryDirectory& folder, const std::string& script, const std::string& name) {
    folder.write(name + ".script", script + "dump " + name + ".json\n");
    const GameResult result = runGame(
        folder, {"--no-logging", "--size", "667x375", "--script", name + ".script", "--record", name + ".recorded"});
    EXPECT_EQ(result.status, 0) << name << ": " << result.errors;
    return folder.read(name + ".recorded");
}

TEST(RecordingTest, IsTheSessionAgain) {
    const TemporaryDirectory folder;
    const std::string recorded = play(folder, session + std::string(afterwards), "played");
    ASSERT_EQ(withoutRests(recorded), withoutRests(session));
    EXPECT_THAT(recorded, ::testing::StartsWith("await idle 60\ntap btnOpen\n"));
    ASSERT_EQ(withoutRests(play(folder, recorded + "swipe contentView left\nwait 0.5\n", "closed")),
              withoutRests(recorded) + "swipe assetView left\n");
    EXPECT_EQ(State(folder, "played.json").json("isOpened"), "true");
    EXPECT_EQ(State(folder, "closed.json").json("isOpened"), "false");
}

TEST(RecordingTest, WantsAFileThatCanBeWritten) {
    const TemporaryDirectory folder;
    const GameResult result = runGame(folder, {"--record", "no/such/folder/session.script"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, ::testing::HasSubstr("cannot write no/such/folder/session.script"));
}

}  // namespace
}  // namespace flarebox::testing
