#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Core/Logging.h>
#include <Foundation/MainQueue.h>
#include <Host/Headless/HeadlessHost.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIWindow.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace flarebox {
namespace {

using ::testing::HasSubstr;

/// Takes its time to lay itself out and to draw.
class SlowView : public UIView {
    FLAREBOX_CLASS(SlowView)
public:
    void layoutSubviews() override {
        UIView::layoutSubviews();
        clock->advance(0.020);
    }
    VirtualClock* clock = nullptr;
};

const ClassInfo& SlowView::staticClass() {
    static const ClassInfo info("SlowView", &UIView::staticClass(), nullptr);
    return info;
}

class TurnLog : public ::testing::Test {
protected:
    void SetUp() override {
        FlareboxConfig::defaultConfig().setEnableLogging(true);
        FlareboxConfig::defaultConfig().setLogLevel(LogLevelInfo);
        TurnMeter::shared().setClock(&clock);
        host.update();
        host.setTurnBudget(0.004);
        host.resetLongestTurn();
    }
    void TearDown() override {
        FlareboxConfig::defaultConfig().setEnableLogging(false);
        TurnMeter::shared().setClock(nullptr);
        host.setTurnBudget(0);
        host.resetLongestTurn();
    }
    std::string logOf(const std::function<void()>& work) {
        ::testing::internal::CaptureStderr();
        work();
        return ::testing::internal::GetCapturedStderr();
    }

    VirtualClock clock;
    HeadlessHost host{{320, 240}, 1};
};

TEST_F(TurnLog, SaysHowLongATurnTookAndItsLongestParts) {
    const auto view = make<SlowView>();
    view->clock = &clock;
    UIApplication::sharedApplication().delegate()->window()->addSubview(*view);
    MainQueue::shared().async([&] { clock.advance(0.0034); });
    EXPECT_EQ(logOf([&] { host.update(); }),
              "KestrinSDK Info: A turn took 23.4 ms, more than the 4.0 ms it may: layout 20.0 ms, queued callbacks 3.4 "
              "ms\n");
    EXPECT_NEAR(host.longestTurn().seconds(), 0.0234, 1e-9);
    EXPECT_NEAR(host.longestTurn().secondsOf("layout"), 0.020, 1e-9);
    view->removeFromSuperview();
}

TEST_F(TurnLog, IsSilentWithinTheBudgetAndWhereTheLogIs) {
    const auto spend = [&](double seconds) {
        MainQueue::shared().async([this, seconds] { clock.advance(seconds); });
        host.update();
    };
    EXPECT_EQ(logOf([&] { spend(0.003); }), "");
    EXPECT_THAT(logOf([&] { spend(0.005); }), HasSubstr("5.0 ms"));
    FlareboxConfig::defaultConfig().setLogLevel(LogLevelWarning);
    EXPECT_EQ(logOf([&] { spend(0.006); }), "");
    FlareboxConfig::defaultConfig().setLogLevel(LogLevelInfo);
    host.setTurnBudget(0);
    EXPECT_EQ(logOf([&] { spend(0.1); }), "");
    EXPECT_NEAR(host.longestTurn().seconds(), 0.006, 1e-9) << "what is not measured is not remembered";
    host.resetLongestTurn();
    EXPECT_EQ(host.longestTurn().seconds(), 0);
}

}  // namespace
}  // namespace flarebox
