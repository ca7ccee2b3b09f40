#include "InputTesting.h"

#include <Foundation/NSNotificationCenter.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIDevice.h>
#include <UIKit/UIScreen.h>

#include <limits>

namespace flarebox::testing {
namespace {

using enum InputResult;
using Events = std::vector<std::string>;

class InputCapture : public InputTest {
protected:
    // A panel at the left, a container that shows nothing with a button in it at the right, the game in between.
    Ref<RecordingView> panel = add<RecordingView>(window(), {{0, 0}, {200, 375}}, UIColor::blackColor());
    Ref<UIView> container = add(window(), {{300, 0}, {367, 375}});
    Ref<UIButton> button = add<UIButton>(*container, {{100, 100}, {60, 40}});
};

TEST_F(InputCapture, TouchBelongsToWhomItBeganOn) {
    struct Case {
        const char* name;
        CGPoint point;
        InputResult result;
    };
    const Case cases[] = {
        {"on the panel", {100, 100}, Consumed},        {"in the panel's last point", {199.5, 374}, Consumed},
        {"on the game", {250, 100}, Ignored},          {"on a container that shows nothing", {310, 100}, Ignored},
        {"on the button in it", {420, 110}, Consumed}, {"outside the screen", {-5, 100}, Ignored},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(host.pointerDown(3, each.point), each.result);
        // Wherever it goes from there.
        EXPECT_EQ(host.pointerMoved(3, {250, 200}), each.result);
        EXPECT_EQ(host.pointerMoved(3, {100, 200}), each.result);
        EXPECT_EQ(host.pointerUp(3, {420, 110}), each.result);
        EXPECT_EQ(host.pointerMoved(3, each.point), Ignored) << "it is over";
    }
}

TEST_F(InputCapture, FingersAreToldApart) {
    EXPECT_EQ(host.pointerDown(1, {100, 100}), Consumed);
    EXPECT_EQ(host.pointerDown(2, {250, 100}), Ignored);
    EXPECT_EQ(host.pointerMoved(1, {250, 100}), Consumed);
    EXPECT_EQ(host.pointerMoved(2, {100, 100}), Ignored);
    EXPECT_EQ(host.pointerUp(2, {100, 100}), Ignored);
    EXPECT_EQ(host.pointerUp(1, {100, 100}), Consumed);
    EXPECT_EQ(panel->events, (Events{"began", "moved", "ended"}));
}

TEST_F(InputCapture, ViewsThatTakeNoInputAreSeenThrough) {
    panel->setHidden(true);
    EXPECT_EQ(host.pointerDown(0, {100, 100}), Ignored);
    host.pointerUp(0, {100, 100});
    panel->setHidden(false);
    panel->setUserInteractionEnabled(false);
    EXPECT_EQ(host.pointerDown(0, {100, 100}), Ignored);
    host.pointerUp(0, {100, 100});
    panel->setUserInteractionEnabled(true);
    // Something that fills the window and shows nothing does not cover the panel either.
    const auto cover = add(window(), window().bounds());
    EXPECT_EQ(host.pointerDown(0, {100, 100}), Consumed);
    host.pointerUp(0, {100, 100});
    EXPECT_EQ(panel->events, (Events{"began", "ended"}));
}

TEST_F(InputCapture, LostOrInterruptedTouchesAreCancelled) {
    host.pointerDown(0, {100, 100});
    host.pointerDown(0, {100, 100});
    EXPECT_EQ(panel->events, (Events{"began", "cancelled", "began"}));
    host.pointerCancelled(0);
    EXPECT_EQ(panel->events.back(), "cancelled");
    EXPECT_EQ(host.pointerMoved(0, {100, 100}), Ignored);

    panel->events.clear();
    host.pointerDown(0, {100, 100});
    panel->removeFromSuperview();
    EXPECT_EQ(host.pointerMoved(0, {100, 100}), Consumed) << "the touch stays the panel's to its end";
    EXPECT_EQ(host.pointerUp(0, {100, 100}), Consumed);
    EXPECT_EQ(panel->events, (Events{"began", "cancelled"}));
}

TEST_F(InputCapture, ViewMayGoDuringItsTouch) {
    host.pointerDown(0, {100, 100});
    panel->removeFromSuperview();
    panel = nullptr;
    EXPECT_EQ(host.pointerMoved(0, {100, 100}), Consumed);
    EXPECT_EQ(host.pointerUp(0, {100, 100}), Consumed);
}

TEST_F(InputCapture, StillPointerIsFoundAgainWhileThePanelMoves) {
    panel->setFrame({{-200, 0}, {200, 375}});
    frame();
    EXPECT_EQ(host.pointerHovered({100, 100}), Ignored);
    UIView::animateWithDuration(0.3, [&] { panel->setFrame({{0, 0}, {200, 375}}); });
    frame();
    EXPECT_TRUE(panel->events.empty()) << "it has only begun to move";
    run(0.35);
    EXPECT_EQ(panel->events, Events{"entered"});
    UIView::animateWithDuration(0.3, [&] { panel->setFrame({{-200, 0}, {200, 375}}); });
    run(0.35);
    EXPECT_EQ(panel->events, (Events{"entered", "exited"}));
}

TEST_F(InputCapture, HoverEntersOnceAndLeaves) {
    EXPECT_EQ(host.pointerHovered({100, 100}), Consumed);
    EXPECT_EQ(host.pointerHovered({110, 100}), Consumed);
    EXPECT_EQ(panel->events, Events{"entered"});
    host.pointerLeft();
    EXPECT_EQ(panel->events, (Events{"entered", "exited"}));
    run(0.1);
    EXPECT_EQ(panel->events.size(), 2U) << "a pointer that left is not looked for";
    host.pointerHovered({100, 100});
    panel->removeFromSuperview();
    panel = nullptr;
    EXPECT_EQ(host.pointerHovered({100, 100}), Ignored);
}

TEST_F(InputCapture, PressCountsNearTheButtonOnly) {
    int presses = 0;
    button->addAction([&] { ++presses; }, UIControlEvents::TouchUpInside);
    tap({430, 120});
    EXPECT_EQ(presses, 1);
    drag({430, 120}, {600, 300}, 1);
    EXPECT_EQ(presses, 1) << "dragged off";
    EXPECT_FALSE(button->isHighlighted());
}

TEST_F(InputCapture, KeysAndWheelBesideThePanelAreTheGames) {
    EXPECT_EQ(host.keyDown("escape"), Ignored);
    EXPECT_EQ(host.scrolled({250, 100}, 0, 10), Ignored);
    EXPECT_EQ(host.scrolled({100, 100}, 0, 10), Consumed) << "the game must not zoom below the panel";
}

class OrientationObserver : public NSObject {
    FLAREBOX_CLASS(OrientationObserver)
public:
    int count = 0;
    void turned() { ++count; }
};

const ClassInfo& OrientationObserver::staticClass() {
    static const Action actions[] = {action<&OrientationObserver::turned>("turned")};
    static const ClassInfo info("OrientationObserver", &NSObject::staticClass(), nullptr, {.actions = actions});
    return info;
}

TEST_F(InputCapture, OrientationIsPostedOnlyToThoseWhoAsked) {
    UIDevice& device = UIDevice::currentDevice();
    while (device.isGeneratingDeviceOrientationNotifications()) device.endGeneratingDeviceOrientationNotifications();
    const auto observer = make<OrientationObserver>();
    NSNotificationCenter::defaultCenter().addObserver(*observer, "turned", UIDeviceOrientationDidChangeNotification);
    host.setOrientation(UIDeviceOrientation::Portrait);
    EXPECT_EQ(observer->count, 0);
    EXPECT_EQ(device.orientation(), UIDeviceOrientation::Portrait);
    device.beginGeneratingDeviceOrientationNotifications();
    host.setOrientation(UIDeviceOrientation::LandscapeLeft);
    host.setOrientation(UIDeviceOrientation::LandscapeLeft);
    EXPECT_EQ(observer->count, 1);
    device.endGeneratingDeviceOrientationNotifications();
    host.setOrientation(UIDeviceOrientation::FaceUp);
    EXPECT_EQ(observer->count, 1);
}

TEST_F(InputCapture, WindowFollowsTheScreen) {
    const auto root = make<UIViewController>();
    window().setRootViewController(root);
    host.setScreen({375, 667}, 3);
    host.update();
    EXPECT_EQ(UIScreen::mainScreen().bounds(), CGRectMake(0, 0, 375, 667));
    EXPECT_EQ(UIScreen::mainScreen().scale(), 3);
    EXPECT_EQ(window().frame(), CGRectMake(0, 0, 375, 667));
    EXPECT_EQ(root->view().frame(), CGRectMake(0, 0, 375, 667));
}

TEST_F(InputCapture, ScreensHaveBounds) {
    const CGFloat none = std::numeric_limits<CGFloat>::quiet_NaN();
    const struct {
        CGSize size;
        CGFloat scale;
        CGSize used;
        CGFloat usedScale;
    } cases[] = {
        {{16384, 1}, 1, {16384, 1}, 1}, {{1e300, 1e300}, 1e300, {1024, 1024}, 16}, {{9000, 20}, 2, {8192, 20}, 2},
        {{-5, none}, 2, {0, 0}, 2},     {{300, 200}, none, {300, 200}, 1},         {{300, 200}, -3, {300, 200}, 1},
    };
    for (const auto& [size, scale, used, usedScale] : cases) {
        host.resize(size, scale);
        host.update();
        const UIScreen& screen = UIScreen::mainScreen();
        EXPECT_EQ(screen.bounds().size, used);
        EXPECT_EQ(screen.scale(), usedScale);
        const UIDeviceOrientation orientation = UIDevice::currentDevice().orientation();
        host.resize(size, scale);
        EXPECT_EQ(UIDevice::currentDevice().orientation(), orientation) << "the same is no change";
    }
}

TEST(InputHosts, OneFollowsAnother) {
    Ref<UIView> survivor = make<UIView>();
    for (int round = 0; round < 2; ++round) {
        UIHost host({100, 100}, 1);
        UIApplication::sharedApplication().keyWindow()->addSubview(*survivor);
        host.update();
        EXPECT_NE(survivor->window(), nullptr);
    }
    EXPECT_EQ(survivor->window(), nullptr);
    EXPECT_EQ(UIApplication::sharedApplication().keyWindow(), nullptr);
}

TEST(InputLinks, OnlyAllowedSchemesAreOpened) {
    UIApplication& application = UIApplication::sharedApplication();
    const auto recorder = std::make_shared<RecordingUrlOpener>();
    recorder->addScheme("kestrin");
    UIApplication::sharedApplication().allowScheme("kestrin");
    recorder->addScheme("file");
    application.setUrlOpener(recorder);
    struct Case {
        const char* url;
        bool canOpen, opens;
    };
    const Case cases[] = {
        {"kestrin://", true, true},
        {"KESTRIN://item", true, true},
        {"https://example.com/buy?x=1", false, true},
        {"App-Prefs:root=Privacy&path=Advertising", false, true},
        {"file:///etc/passwd", false, false},
        {"javascript:alert(1)", false, false},
        {"no/scheme", false, false},
        {"", false, false},
    };
    std::size_t opened = 0;
    for (const Case& each : cases) {
        SCOPED_TRACE(each.url);
        const NSURL url = NSURL::URLWithString(each.url);
        EXPECT_EQ(application.canOpenURL(url), each.canOpen);
        EXPECT_EQ(application.openURL(url), each.opens);
        opened += each.opens;
        EXPECT_EQ(recorder->openedURLs().size(), opened);
    }
    application.setUrlOpener(nullptr);
}

}  // namespace
}  // namespace flarebox::testing
