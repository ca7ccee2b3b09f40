// What is recorded of a session of use, played again, is the same session.

#include "State.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace flarebox::testing {
namespace {

// Each kind of movement once, as a player makes them. What follows the last one shows where it led.
constexpr const char* session =
    "await idle 60\ntap btnOpen\nwait 0.5\nawait idle 60\ncell 3\nawait idle 60\nwait 0.7\ntap btnNext\nwait 0.3\n"
    "cell 9\nwait 0.4\nawait idle 60\nswipe collectionView right\nwait 2\nscroll 150 340 120 0\nwait 0.5\n"
    "drag 150 340 100 345\nwait 0.4\ntap 900 300\nwait 0.4\nawait idle 60\n";
constexpr const char* leaving = "swipe contentView left\nwait 0.5\n";

std::string play(const TemporaryDirectory& folder, const std::string& script, const std::string& name) {
    folder.write(name + ".script", script + "dump " + name + ".json\n");
    const GameResult result = runGame(
        folder, {"--no-logging", "--size", "667x375", "--script", name + ".script", "--record", name + ".recorded"});
    EXPECT_EQ(result.status, 0) << name << ": " << result.errors;
    return folder.read(name + ".recorded");
}

TEST(RecordingTest, IsTheSessionAgain) {
    const TemporaryDirectory folder;
    const std::string first = play(folder, session, "first");
    EXPECT_EQ(first,
              "await idle\ntap btnOpen\nwait 0.5\nawait idle\ncell 3\nwait 0.7\nawait idle\ntap btnNext\nwait 0.3\n"
              "await idle\ncell 9\nwait 0.4\nawait idle\nswipe collectionView right\nwait 2\nscroll 150 340 120 0\n"
              "wait 0.5\nawait idle\ndrag 150 340 100 345\n");
    // The recording ends with the last command; the time after it is no command's.
    EXPECT_EQ(play(folder, first + "wait 0.8\nawait idle 60\n", "again"), first);
    const State played(folder, "first.json"), again(folder, "again.json");
    for (const char* field : {"isOpened", "currentAsset", "currentAssetMode", "cells"})
        EXPECT_EQ(again.json(field), played.json(field)) << field;

    const std::string closing = play(folder, first + leaving, "closing");
    EXPECT_THAT(closing, ::testing::EndsWith("swipe contentView left\n"));
    play(folder, closing + "wait 0.5\n", "closed");
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
