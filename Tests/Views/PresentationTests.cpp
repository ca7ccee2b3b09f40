#include <Tests/Views/TabTesting.h>
#include <UIKit/UIButton.h>

#include <algorithm>
#include <cmath>

namespace flarebox::testing {
namespace {

class PresentationTest : public TabTest {
protected:
    int tabsInWindow() {
        const auto views = window().subviews();
        return static_cast<int>(std::count_if(
            views.begin(), views.end(), [](const Ref<UIView>& view) { return objectCast<FlareboxView>(view.get()); }));
    }
    void swipe(CGPoint from, CGPoint by) {
        host_->pointerDown(0, from);
        for (int step = 1; step <= 8; ++step) {
            pass(1.0 / 60);
            host_->pointerMoved(0, {from.x + by.x * step / 8, from.y + by.y * step / 8});
        }
        host_->pointerUp(0, from + by);
        pass(0.5);
    }
};

TEST_F(PresentationTest, SizesFollowTheScreen) {
    struct Case {
        CGSize screen;
        double scale, width, height;
    };
    const Case cases[] = {
        {{667, 375}, 2, 245.5357, 375}, {{375, 667}, 2, 375, 572.7272},    {{1024, 768}, 1, 352, 537.6},
        {{1024, 768}, 2, 502.857, 768}, {{1366, 1024}, 1, 469.333, 716.8}, {{600, 600}, 1, 392.857, 600},
    };
    for (const Case& example : cases) {
        host_->setScreen(example.screen, example.scale);
        const CGSize size = FlareboxView::getViewSize();
        EXPECT_NEAR(size.width, example.width, 0.001) << example.screen.width;
        EXPECT_NEAR(size.height, example.height, 0.001) << example.screen.width;
        EXPECT_EQ(size.width, static_cast<double>(static_cast<float>(size.width))) << "single precision";
    }
}

TEST_F(PresentationTest, IsAttachedClosedWithItsButtonAtTheEdge) {
    makeTab();
    EXPECT_TRUE(tab_->isOpened()) << "without a place it counts as open";
    tab_->open();
    EXPECT_FALSE(tab_->isHasBeenOpened()) << "an open tab asked to open does nothing";
    tab_->showAtWindow();
    EXPECT_EQ(tabsInWindow(), 0) << "attaching waits";
    pass(0.15);
    ASSERT_EQ(tabsInWindow(), 1);

    const CGSize size = FlareboxView::getViewSize();
    EXPECT_FALSE(tab_->isOpened());
    EXPECT_EQ(leading(), -size.width);
    EXPECT_NEAR(tab_->frame().minX(), -size.width, 1e-6);
    EXPECT_NEAR(tab_->frame().midY(), 375 / 2.0, 1e-6);
    const CGRect button = field("btnOpen")->frame();
    EXPECT_EQ(field("btnOpen")->superview(), &window());
    EXPECT_NEAR(button.minX(), 0, 1e-6);
    EXPECT_NEAR(button.width(), 22.5, 1e-6);
    EXPECT_NEAR(button.midY(), 375 / 2.0, 1e-6);
    EXPECT_GT(button.height(), button.width());
}

TEST_F(PresentationTest, OpensAndClosesByEveryWay) {
    showLoadedTab();
    const double closed = -FlareboxView::getViewSize().width;

    EXPECT_EQ(tap("btnOpen"), InputResult::Consumed);
    EXPECT_TRUE(tab_->isOpened()) << "at once, whatever is still moving";
    EXPECT_TRUE(tab_->isHasBeenOpened());
    EXPECT_EQ(leading(), 0);
    EXPECT_NEAR(tab_->presentationFrame().minX(), closed, 1);
    pass(0.15);
    EXPECT_NEAR(tab_->presentationFrame().minX(), closed / 2, 10) << "half way";
    pass(0.2);
    EXPECT_EQ(tab_->presentationFrame().minX(), 0);
    EXPECT_NEAR(field("btnOpen")->presentationFrame().minX(), -closed, 1e-6) << "the button goes along";
    EXPECT_EQ(FlareboxManager::sharedInstance().flareboxOpenedDate().timeIntervalSince1970() > 1.7e9, true);

    EXPECT_EQ(tap("btnClose"), InputResult::Consumed);
    EXPECT_EQ(leading(), closed);
    pass(0.4);

    tab_->toggleFlarebox();
    EXPECT_TRUE(tab_->isOpened());
    pass(0.4);
    const CGPoint title{60, 250};
    for (const CGPoint wrong : {CGPoint{120, 0}, CGPoint{0, 100}, CGPoint{0, -100}}) {
        swipe(title, wrong);
        EXPECT_TRUE(tab_->isOpened()) << wrong.x << " " << wrong.y;
    }
    swipe({150, 250}, {-120, 4});
    EXPECT_FALSE(tab_->isOpened());

    tab_->open();
    tab_->hideFlareboxButton();
    EXPECT_FALSE(tab_->isFlareboxButtonVisible());
    EXPECT_FALSE(tab_->isOpened()) << "hiding the button closes";
    tab_->showFlareboxButton();
    EXPECT_TRUE(tab_->isFlareboxButtonVisible());
    EXPECT_FALSE(tab_->isOpened());
}

TEST_F(PresentationTest, TouchesBesideThePanelAreTheGames) {
    showLoadedTab();
    EXPECT_EQ(tap({400, 100}), InputResult::Ignored);
    EXPECT_EQ(tap({100, 100}), InputResult::Ignored) << "where the panel would be if it were open";
    tab_->open();
    pass(0.4);
    EXPECT_EQ(tap({100, 100}), InputResult::Consumed);
    EXPECT_EQ(tap({400, 100}), InputResult::Ignored);
}

TEST_F(PresentationTest, AtMostOneTabIsInTheWindowAndItCanComeBack) {
    showLoadedTab();
    tab_->showAtWindow();
    pass(0.3);
    EXPECT_EQ(tabsInWindow(), 1);
    const Ref<FlareboxView> first = tab_;
    makeTab()->showAtWindow();
    pass(0.3);
    EXPECT_EQ(tabsInWindow(), 1);
    EXPECT_EQ(first->superview(), nullptr);

    for (int round = 0; round < 3; ++round) {
        tab_->open();
        pass(0.4);
        tab_->removeFromSuperview();
        EXPECT_EQ(field("btnOpen")->superview(), nullptr);
        EXPECT_TRUE(window().constraints().empty()) << "the window keeps nothing of a tab that has gone";
        tab_->showAtView(window());
        pass(0.1);
        EXPECT_FALSE(tab_->isOpened());
        EXPECT_NEAR(field("btnOpen")->frame().minX(), 0, 1e-6);
    }
}

TEST_F(PresentationTest, TurnsWithTheDevice) {
    host_->setOrientation(UIDeviceOrientation::LandscapeLeft);
    showLoadedTab();
    tab_->open();
    pass(0.4);
    const auto turn = [&](UIDeviceOrientation orientation, CGSize screen) {
        host_->setScreen(screen, 2);
        host_->setOrientation(orientation);
        pass(0.1);
        return tab_->frame();
    };
    EXPECT_NEAR(turn(UIDeviceOrientation::Portrait, {375, 667}).height(), 572.727, 0.01);
    EXPECT_EQ(leading(), 0) << "open stays open";
    EXPECT_NEAR(field("btnOpen")->frame().width(), 36 * 667 / 600.0, 0.01);
    EXPECT_NEAR(turn(UIDeviceOrientation::FaceUp, {667, 375}).height(), 572.727, 0.01) << "lying flat changes nothing";
    tab_->close();
    pass(0.4);
    EXPECT_NEAR(turn(UIDeviceOrientation::LandscapeRight, {667, 375}).height(), 375, 0.01);
    EXPECT_EQ(leading(), -FlareboxView::getViewSize().width) << "closed stays closed";
}

TEST_F(PresentationTest, ATabThatTheHostLetsGoEnds) {
    network_->setStatus(AFNetworkReachabilityStatusNotReachable);
    makeTab()->showAtWindow();
    pass(0.3);
    const Weak<FlareboxView> gone = tab_;
    tab_->removeFromSuperview();
    tab_ = nullptr;
    AFNetworkReachabilityManager::sharedManager().setReachabilityStatusChangeBlock(nullptr);
    pass(0.1);
    EXPECT_FALSE(gone);
    FlareboxConfig::defaultConfig().setShowFlareboxButton(false);
    FlareboxConfig::defaultConfig().setShowFlareboxButton(true);
    pass(2);
}

}  // namespace
}  // namespace flarebox::testing
