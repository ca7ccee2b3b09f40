// Callbacks of the host's that throw, through the call in which they run.

#include "InputTesting.h"

#include <Foundation/NSAssertionHandler.h>
#include <Foundation/NSTimer.h>
#include <UIKit/CADisplayLink.h>
#include <UIKit/UIButton.h>

namespace flarebox::testing {
namespace {

/// Throws the first time it is called.
class Thrower : public UIView {
    FLAREBOX_CLASS(Thrower)
public:
    void act() {
        if (++calls == 1) throw NSException("Test", "once");
    }
    void layoutSubviews() override {
        if (throwsInLayout) act();
    }

    int calls = 0;
    bool throwsInLayout = false;
};

const ClassInfo& Thrower::staticClass() {
    static const Action actions[] = {action<&Thrower::act>("act")};
    static const ClassInfo info("Thrower", &UIView::staticClass(), createObject<Thrower>, {.actions = actions});
    return info;
}

class ThrowingTest : public InputTest {
protected:
    /// Frames for so many seconds; how many of them something was thrown through.
    int thrownIn(double seconds) {
        int thrown = 0;
        for (double passed = 0; passed < seconds; passed += frameTime) {
            try {
                frame();
            } catch (const NSException&) {
                ++thrown;
            }
        }
        return thrown;
    }

    Ref<Thrower> thrower_ = add<Thrower>(window(), CGRectMake(0, 0, 10, 10));
};

TEST_F(ThrowingTest, OneFrameIsLostAndNothingElse) {
    int framesBefore = 0, framesAfter = 0;
    std::unique_ptr<CADisplayLink> link;
    Ref<NSTimer> timer;
    struct Case {
        const char* callback;
        std::function<void()> start;
        bool comesAgain;
    };
    const Case cases[] = {
        {"work", [&] { dispatch_async_main([&] { thrower_->act(); }); }, false},
        {"timer", [&] { timer = NSTimer::scheduledTimer(0.1, *thrower_, "act", nullptr, true); }, true},
        {"display link", [&] { link = std::make_unique<CADisplayLink>([&](double) { thrower_->act(); }); }, true},
        {"animation's end",
         [&] {
             UIView::animateWithDuration(
                 0.1, [&] { thrower_->setAlpha(1 - thrower_->alpha()); }, [&](bool) { thrower_->act(); });
         },
         false},
        {"layout",
         [&] {
             thrower_->throwsInLayout = true;
             thrower_->setNeedsLayout();
         },
         false},
    };
    const CADisplayLink before([&](double) { ++framesBefore; });
    for (const Case& each : cases) {
        SCOPED_TRACE(each.callback);
        thrower_->calls = framesBefore = framesAfter = 0;
        each.start();
        const CADisplayLink after([&](double) { ++framesAfter; });
        const auto moving = add(window(), CGRectMake(20, 0, 10, 10));
        UIView::animateWithDuration(0.2, [&] { moving->setFrame(CGRectMake(60, 0, 10, 10)); });
        EXPECT_EQ(thrownIn(0.5), 1);
        EXPECT_EQ(thrower_->calls > 1, each.comesAgain);
        EXPECT_GE(framesBefore, 31);
        EXPECT_GE(framesAfter, 31);
        EXPECT_EQ(moving->presentationRectInRoot().minX(), 60);
        if (timer) timer->invalidate();
        link = nullptr;
        thrower_->throwsInLayout = false;
        moving->removeFromSuperview();
    }
}

TEST_F(ThrowingTest, ATouchIsOverWhenItsActionThrows) {
    const auto button = add<UIButton>(window(), CGRectMake(100, 100, 50, 50));
    button->addTarget(*thrower_, "act", UIControlEvents::TouchUpInside);
    const auto pressed = [&] {
        host.pointerDown(0, {120, 120});
        host.pointerUp(0, {120, 120});
    };
    EXPECT_THROW(pressed(), NSException);
    EXPECT_FALSE(button->isHighlighted());
    pressed();
    EXPECT_EQ(thrower_->calls, 2);
}

}  // namespace
}  // namespace flarebox::testing
