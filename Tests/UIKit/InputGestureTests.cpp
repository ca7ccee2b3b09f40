#include "InputTesting.h"

#include <UIKit/UIButton.h>
#include <UIKit/UIScrollView.h>
#include <UIKit/UISwipeGestureRecognizer.h>

namespace flarebox::testing {
namespace {

class Closer : public NSObject {
    FLAREBOX_CLASS(Closer)
public:
    int count = 0;
    void close() { ++count; }
};

const ClassInfo& Closer::staticClass() {
    static const Action actions[] = {action<&Closer::close>("close")};
    static const ClassInfo info("Closer", &NSObject::staticClass(), nullptr, {.actions = actions});
    return info;
}

class InputGestures : public InputTest {
protected:
    InputGestures() { panel->addGestureRecognizer(swipe); }

    Ref<Closer> closer = make<Closer>();
    Ref<RecordingView> panel = add<RecordingView>(window(), {{0, 0}, {300, 300}}, UIColor::blackColor());
    Ref<UISwipeGestureRecognizer> swipe = UISwipeGestureRecognizer::initWithTarget(*closer, "close");
};

TEST_F(InputGestures, SwipesByDirectionDistanceAndTime) {
    constexpr std::uint32_t right = 1, left = 2, up = 4, down = 8;
    struct Case {
        const char* name;
        std::uint32_t directions;
        CGPoint movement;
        double seconds;
        int count;
    };
    const Case cases[] = {
        {"left", left, {-80, 0}, 0.2, 1},
        {"left, slightly sloping", left, {-80, 30}, 0.2, 1},
        {"right where left is wanted", left, {80, 0}, 0.2, 0},
        {"up where left is wanted", left, {0, -80}, 0.2, 0},
        {"down where left is wanted", left, {0, 80}, 0.2, 0},
        {"diagonal", left, {-80, 80}, 0.2, 0},
        {"too short", left, {-45, 0}, 0.2, 0},
        {"long enough", left, {-50, 0}, 0.2, 1},
        {"too slow", left, {-80, 0}, 1.2, 0},
        {"far, once", left, {-140, 0}, 0.2, 1},
        {"right", right, {80, 0}, 0.2, 1},
        {"up", up, {0, -80}, 0.2, 1},
        {"down", down, {0, 80}, 0.2, 1},
        {"either side, to the right", left | right, {80, 0}, 0.2, 1},
        {"either side, down", left | right, {0, 80}, 0.2, 0},
        {"in no time, as a script does", left, {-80, 0}, 0, 1},
    };
    for (const Case& each : cases) {
        for (int steps : {1, 10}) {
            SCOPED_TRACE(std::string(each.name) + " in " + std::to_string(steps));
            closer->count = 0;
            swipe->setDirection(each.directions);
            drag({150, 150}, CGPoint{150, 150} + each.movement, each.seconds, steps);
            EXPECT_EQ(closer->count, each.count);
        }
    }
}

TEST_F(InputGestures, RecognisedSwipeTakesTheTouchFromTheView) {
    swipe->setDirection(UISwipeGestureRecognizerDirectionLeft);
    const auto button = add<UIButton>(*panel, {{150, 100}, {100, 50}});
    int presses = 0;
    button->addAction([&] { ++presses; }, UIControlEvents::TouchUpInside);
    host.pointerDown(0, {240, 120});
    EXPECT_TRUE(button->isHighlighted());
    host.pointerMoved(0, {170, 120});
    EXPECT_FALSE(button->isHighlighted());
    host.pointerUp(0, {170, 120});
    EXPECT_EQ(closer->count, 1);
    EXPECT_EQ(presses, 0) << "the finger is still on the button, but it swiped";

    drag({280, 280}, {200, 280}, 0.2);
    EXPECT_EQ(panel->events.back(), "cancelled");
}

TEST_F(InputGestures, TargetMayBeGone) {
    swipe->setDirection(UISwipeGestureRecognizerDirectionLeft);
    closer = nullptr;
    drag({150, 150}, {50, 150}, 0.2);
    SUCCEED();
}

TEST_F(InputGestures, DisabledRecogniserSeesNothing) {
    swipe->setDirection(UISwipeGestureRecognizerDirectionLeft);
    swipe->setEnabled(false);
    drag({150, 150}, {50, 150}, 0.2);
    EXPECT_EQ(closer->count, 0);
}

TEST_F(InputGestures, ListKeepsItsDragsAndLeavesTheOthers) {
    swipe->setDirection(UISwipeGestureRecognizerDirectionLeft | UISwipeGestureRecognizerDirectionUp);
    const auto list = add<UIScrollView>(*panel, {{0, 200}, {300, 80}});
    list->setContentSize({900, 80});
    for (int steps : {1, 10}) {
        list->setContentOffset({0, 0});
        drag({250, 240}, {100, 240}, 0.2, steps);
        EXPECT_EQ(closer->count, 0) << "along the list, in " << steps;
        EXPECT_TRUE(steps == 1 || list->contentOffset().x > 50);
        run(3);
    }
    drag({250, 240}, {250, 150}, 0.2);
    EXPECT_EQ(closer->count, 1) << "across the list";
}

}  // namespace
}  // namespace flarebox::testing
