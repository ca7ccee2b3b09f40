#include <Foundation/MainQueue.h>
#include <Foundation/TurnMeter.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace flarebox {
namespace {

struct Reported {
    double seconds;
    double budget;
    std::vector<std::string> names;
};
std::vector<Reported> reports;

void keepReport(const TurnMeter::Turn& turn, double budget) {
    Reported reported{turn.seconds(), budget, {}};
    for (const auto& part : turn.parts()) reported.names.emplace_back(part.name);
    reports.push_back(reported);
}

class TurnMeterTest : public ::testing::Test {
protected:
    void SetUp() override {
        reports.clear();
        meter.setClock(&clock);
        meter.setReport(keepReport);
        meter.setBudget(0.004);
        meter.resetLongestTurn();
    }
    void TearDown() override {
        meter.setClock(nullptr);
        meter.setReport(nullptr);
        meter.setBudget(0);
        meter.resetLongestTurn();
    }
    void spend(const char* name, double seconds) {
        TurnMeter::Part part(name);
        clock.advance(seconds);
    }

    TurnMeter& meter = TurnMeter::shared();
    VirtualClock clock;
};

TEST_F(TurnMeterTest, TimeBelongsToTheInnermostPartAndPartsOfOneNameAreOne) {
    {
        TurnMeter::Part turn("update");
        clock.advance(0.001);
        {
            TurnMeter::Part answers("answers");
            clock.advance(0.002);
            spend("layout", 0.004);
            clock.advance(0.003);
        }
        spend(std::string("layout").c_str(), 0.002);
    }
    const TurnMeter::Turn& turn = meter.longestTurn();
    EXPECT_NEAR(turn.seconds(), 0.012, 1e-9);
    EXPECT_NEAR(turn.secondsOf("layout"), 0.006, 1e-9);
    EXPECT_NEAR(turn.secondsOf("answers"), 0.005, 1e-9);
    EXPECT_NEAR(turn.secondsOf("update"), 0.001, 1e-9);
    EXPECT_EQ(turn.secondsOf("drawing"), 0);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].names, (std::vector<std::string>{"layout", "answers", "update"})) << "the longest first";
    EXPECT_EQ(reports[0].budget, 0.004);
}

TEST_F(TurnMeterTest, BudgetDecidesWhatIsMeasuredAndReported) {
    struct Case {
        double budget;
        double longest;
        std::size_t reports;
    };
    constexpr double infinity = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    for (const Case& expected : {Case{0, 0, 0}, Case{-1, 0, 0}, Case{nan, 0, 0}, Case{infinity, 0.008, 0},
                                 Case{0.004, 0.008, 1}, Case{0.001, 0.008, 3}}) {
        reports.clear();
        meter.resetLongestTurn();
        meter.setBudget(expected.budget);
        for (const double seconds : {0.002, 0.008, 0.003}) spend("update", seconds);
        EXPECT_NEAR(meter.longestTurn().seconds(), expected.longest, 1e-9) << expected.budget;
        EXPECT_EQ(reports.size(), expected.reports) << expected.budget;
    }
}

TEST_F(TurnMeterTest, SwitchedInTheMiddleOfATurnItStaysInStep) {
    {
        TurnMeter::Part turn("update");
        meter.setBudget(0);
        spend("layout", 0.005);
        meter.setBudget(0.004);
    }
    meter.setBudget(0);
    {
        TurnMeter::Part turn("update");
        meter.setBudget(0.004);
        spend("layout", 0.005);
    }
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[0].names, std::vector<std::string>{"update"});
    EXPECT_EQ(reports[1].names, std::vector<std::string>{"layout"});
}

TEST_F(TurnMeterTest, ManyNamesAndDeepPartsAreCountedTogether) {
    std::vector<std::string> names;
    for (int number = 0; number < 100; ++number) names.push_back("part " + std::to_string(number));
    const std::function<void(std::size_t)> nest = [&](std::size_t depth) {
        TurnMeter::Part part(names[depth].c_str());
        clock.advance(0.001);
        if (depth + 1 < names.size()) nest(depth + 1);
    };
    nest(0);
    EXPECT_NEAR(meter.longestTurn().seconds(), 0.1, 1e-9);
    double sum = 0;
    for (const auto& part : meter.longestTurn().parts()) sum += part.seconds;
    EXPECT_NEAR(sum, 0.1, 1e-9);
    EXPECT_NEAR(meter.longestTurn().secondsOf("other"), 0.085, 1e-9);
}

TEST_F(TurnMeterTest, CallbacksOfTheQueueAreParts) {
    MainQueue::shared().async([&] { clock.advance(0.006); });
    MainQueue::shared().run();
    EXPECT_NEAR(meter.longestTurn().secondsOf("queued callbacks"), 0.006, 1e-9);
}

}  // namespace
}  // namespace flarebox
