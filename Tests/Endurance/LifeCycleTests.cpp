// Hosts and tabs that come and go at random moments, with everything under way.

#include <Tests/Endurance/Seams.h>
#include <Tests/Endurance/Stage.h>
#include <Tests/Endurance/Usage.h>

#include <gtest/gtest.h>

#include <cstdio>

namespace flarebox::endurance {
namespace {

/// One host from its beginning to its end. Empty when nothing went wrong.
std::string liveAndDie(std::uint32_t seed) {
    sharedService().forgetRequests();
    Stage stage(seed);
    stage.has3D = stage.once(6);
    stage.tab->showAtWindow();
    if (!stage.once(4)) stage.showLoadedTab();
    for (std::size_t step = stage.below(40); step > 0; --step) {
        if (stage.once(12)) stage.disturb();
        stage.act();
    }
    std::string wrong = stage.end();
    sharedService().behaveNormally();
    return wrong;
}

TEST(LifeCycleTest, RoundAfterRoundLeavesNothingBehind) {
    const std::size_t rounds = setting("FLAREBOX_ROUNDS", Seams::areThere ? 30 : 10),
                      first = setting("FLAREBOX_SEED", 1);
    const bool isTalkative = setting("FLAREBOX_TRACE", 0) > 0;
    std::vector<Usage> usage;
    std::size_t failures = 0;
    for (std::size_t round = 0; round < rounds; ++round) {
        const std::string wrong = liveAndDie(static_cast<std::uint32_t>(first + round));
        EXPECT_EQ(wrong, "") << "seed " << first + round;
        failures += !wrong.empty();
        usage.push_back(Usage::now());
        if (isTalkative)
            std::printf("%zu\t%zu\t%zu\t%zu\n", first + round, usage.back().heapBytes, usage.back().threads,
                        usage.back().descriptors);
    }
    // What libraries keep grows less and less for some hundred rounds.
    const bool isLong = rounds >= 400;
    EXPECT_LE(growth(usage, &Usage::descriptors), isLong ? 0 : 4);
    EXPECT_LE(growth(usage, &Usage::threads), isLong ? 0 : 12);
    EXPECT_LE(growth(usage, &Usage::heapBytes), isLong ? 512.0 * 1024 : 32.0 * 1024 * 1024);
    // What grows belongs to no round, and is a failure all the same.
    report("life-cycle rounds", rounds, rounds - failures, failures + (failures == 0 && ::testing::Test::HasFailure()));
}

}  // namespace
}  // namespace flarebox::endurance
