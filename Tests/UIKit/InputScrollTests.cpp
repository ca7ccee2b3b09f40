#include "InputTesting.h"

#include <UIKit/ScrollMotion.h>
#include <UIKit/UIScrollView.h>

#include <cmath>

namespace flarebox::testing {
namespace {

using Events = std::vector<std::string>;

class ScrollRecorder : public NSObject, public UIScrollViewDelegate {
public:
    Events events;
    int scrolls = 0;
    std::function<void(UIScrollView&)> didScroll;

    void scrollViewDidScroll(UIScrollView& view) override {
        ++scrolls;
        if (didScroll) didScroll(view);
    }
    void scrollViewWillBeginDragging(UIScrollView&) override { events.push_back("begin"); }
    void scrollViewDidEndDragging(UIScrollView&, bool willDecelerate) override {
        events.push_back(willDecelerate ? "end, moving" : "end");
    }
    void scrollViewWillBeginDecelerating(UIScrollView&) override { events.push_back("decelerating"); }
    void scrollViewDidEndDecelerating(UIScrollView&) override { events.push_back("rest"); }
};

class InputScrolling : public InputTest {
protected:
    InputScrolling() {
        view->setContentSize({3000, 100});
        view->setDelegate(recorder.get());
    }
    void settle() {
        for (int frames = 0; frames < 1000 && (view->isDecelerating() || frames < 30); ++frames) frame();
        EXPECT_FALSE(view->isDecelerating());
    }
    CGFloat offset() const { return view->contentOffset().x; }

    Ref<ScrollRecorder> recorder = make<ScrollRecorder>();
    Ref<UIScrollView> view = add<UIScrollView>(window(), {{0, 0}, {300, 100}});
};

TEST_F(InputScrolling, ContentFollowsTheFingerAndRestsWhereItIsLeft) {
    host.pointerDown(0, {200, 50});
    host.pointerMoved(0, {195, 50});
    EXPECT_EQ(offset(), 0) << "a tap may tremble";
    host.pointerMoved(0, {190, 50});
    host.pointerMoved(0, {150, 50});
    EXPECT_DOUBLE_EQ(offset(), 40);
    EXPECT_TRUE(view->isDragging());
    clock().advance(0.5);
    host.pointerUp(0, {150, 50});
    settle();
    EXPECT_DOUBLE_EQ(offset(), 40);
    EXPECT_EQ(recorder->events, (Events{"begin", "end"}));
}

TEST_F(InputScrolling, ThrownContentSlowsDownAndStops) {
    drag({280, 50}, {130, 50}, 0.15);  // 1,000 points a second
    const CGFloat released = offset();
    EXPECT_EQ(recorder->events, (Events{"begin", "end, moving", "decelerating"}));
    settle();
    // 0.998 of the velocity is left after each millisecond: the way is about half a second's.
    EXPECT_NEAR(offset() - released, 500, 20);
    EXPECT_EQ(recorder->events.back(), "rest");
    const int scrolls = recorder->scrolls;
    run(1);
    EXPECT_EQ(recorder->scrolls, scrolls) << "nothing moves at rest";
}

TEST_F(InputScrolling, BeyondTheEndsContentResistsAndComesBack) {
    host.pointerDown(0, {50, 50});
    host.pointerMoved(0, {60, 50});
    host.pointerMoved(0, {160, 50});
    EXPECT_LT(offset(), -20);
    EXPECT_GT(offset(), -60) << "100 points of the finger are less of the content";
    clock().advance(0.5);
    host.pointerUp(0, {160, 50});
    settle();
    EXPECT_DOUBLE_EQ(offset(), 0);

    view->setContentOffset({2690, 0});
    drag({280, 50}, {30, 50}, 0.1);
    CGFloat farthest = 0;
    recorder->didScroll = [&](UIScrollView& each) { farthest = std::max(farthest, each.contentOffset().x); };
    settle();
    EXPECT_GT(farthest, 2710);
    EXPECT_LT(farthest, 3000);
    EXPECT_DOUBLE_EQ(offset(), 2700);
}

TEST_F(InputScrolling, FingerCatchesMovingContent) {
    drag({280, 50}, {130, 50}, 0.15);
    run(0.2);
    ASSERT_TRUE(view->isDecelerating());
    host.pointerDown(0, {100, 50});
    EXPECT_FALSE(view->isDecelerating());
    const CGFloat caught = offset();
    run(0.2);
    host.pointerUp(0, {100, 50});
    settle();
    EXPECT_DOUBLE_EQ(offset(), caught);
    EXPECT_EQ(recorder->events, (Events{"begin", "end, moving", "decelerating", "rest", "begin", "end"}));
}

TEST_F(InputScrolling, ContentKeepsUpWithAWheelThatTurnsBeforeEveryFrame) {
    CGFloat before = 0;
    for (int i = 0; i < 20; ++i) {
        clock().advance(1.0 / 60);
        host.scrolled({100, 50}, 0, 20);
        host.update();
        if (i > 0) {
            EXPECT_GT(offset(), before);
        }
        before = offset();
    }
    EXPECT_GT(before, 200) << "half of the 400 points at least";
}

TEST_F(InputScrolling, WheelMovesSmoothlyAndStopsAtTheEnds) {
    EXPECT_EQ(host.scrolled({100, 50}, 0, 120), InputResult::Consumed);
    EXPECT_DOUBLE_EQ(offset(), 0);
    frame();
    const CGFloat first = offset();
    EXPECT_GT(first, 0);
    EXPECT_LT(first, 120);
    host.scrolled({100, 50}, 0, 80);
    run(1);
    EXPECT_NEAR(offset(), 200, 0.5) << "turns add up";
    host.scrolled({100, 50}, 50, 0);
    run(1);
    EXPECT_NEAR(offset(), 250, 0.5) << "sideways as well";
    host.scrolled({100, 50}, 0, -1000);
    run(1);
    EXPECT_DOUBLE_EQ(offset(), 0);
    host.scrolled({100, 50}, 0, 1e6);
    run(1);
    EXPECT_DOUBLE_EQ(offset(), 2700);
    EXPECT_TRUE(recorder->events.empty()) << "nobody dragged";
}

TEST_F(InputScrolling, CodeMayGoBeyondTheEnd) {
    view->setContentOffset({5000, 0});
    run(0.5);
    EXPECT_DOUBLE_EQ(offset(), 5000);
    EXPECT_EQ(recorder->scrolls, 1);
    view->setContentOffset({5000, 0});
    EXPECT_EQ(recorder->scrolls, 1) << "nothing changed";
    view->setContentOffset({100, 0}, true);
    frame();
    EXPECT_GT(offset(), 100);
    run(0.4);
    EXPECT_DOUBLE_EQ(offset(), 100);
}

TEST_F(InputScrolling, DelegateMayTakeOverOrGo) {
    recorder->didScroll = [](UIScrollView& each) {
        if (each.contentOffset().x > 50) each.setContentOffset({10, 0});
    };
    view->setContentOffset({400, 0}, true);
    run(0.5);
    EXPECT_DOUBLE_EQ(offset(), 10);
    recorder = nullptr;
    view->setContentOffset({20, 0});
    EXPECT_EQ(view->delegate(), nullptr);
    recorder = make<ScrollRecorder>();
    view->setDelegate(recorder.get());
    view->setContentOffset({400, 0}, true);
    recorder->didScroll = [this](UIScrollView&) { view = nullptr; };
    view->removeFromSuperview();
    run(0.5);
    EXPECT_EQ(view, nullptr);
}

TEST_F(InputScrolling, ScrollingCanBeSwitchedOff) {
    view->setScrollEnabled(false);
    drag({280, 50}, {100, 50}, 0.2);
    host.scrolled({100, 50}, 0, 100);
    run(0.5);
    EXPECT_DOUBLE_EQ(offset(), 0);
}

// The path must not depend on how often it is looked at, and must always end, at a place within the ends.
TEST(InputScrollMotion, EndsWithinItsRange) {
    const ScrollMotion::Range range{0, 500};
    for (CGFloat start : {-400.0, -1.0, 0.0, 250.0, 500.0, 700.0}) {
        for (CGFloat velocity : {-8000.0, -300.0, 0.0, 5.0, 300.0, 8000.0}) {
            SCOPED_TRACE(std::to_string(start) + " at " + std::to_string(velocity));
            const ScrollMotion motion = ScrollMotion::thrown(start, velocity, range);
            EXPECT_NEAR(motion.position(0), start, 1e-9 + (motion.isAtRest(0) ? std::abs(start - motion.target()) : 0));
            EXPECT_TRUE(motion.isAtRest(6));
            EXPECT_DOUBLE_EQ(range.clamp(motion.target()), motion.target());
            CGFloat last = motion.position(0);
            for (double time = 0; time < 6; time += 0.001) {
                const CGFloat now = motion.position(time);
                EXPECT_LT(std::abs(now - last), 12) << "no jump at " << time;
                last = now;
            }
        }
    }
}

TEST(InputScrollMotion, RubberBandIsUndone) {
    const ScrollMotion::Range range{0, 500};
    for (CGFloat position : {-900.0, -50.0, 0.0, 300.0, 500.0, 640.0}) {
        const CGFloat shown = ScrollMotion::rubberBanded(position, range, 300);
        EXPECT_NEAR(ScrollMotion::unrubberBanded(shown, range, 300), position, 1e-6);
        EXPECT_LT(std::abs(shown - range.clamp(shown)), 300);
    }
}

}  // namespace
}  // namespace flarebox::testing
