#pragma once

#include <Foundation/Clock.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIHost.h>
#include <UIKit/UIView.h>
#include <UIKit/UIWindow.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace flarebox::testing {

/// A host without a display on a clock that the test moves.
class InputTest : public ::testing::Test {
protected:
    struct ClockInstaller {
        VirtualClock clock;
        ClockInstaller() { Clock::setCurrent(&clock); }
        ~ClockInstaller() { Clock::setCurrent(nullptr); }
    };

    static constexpr double frameTime = 1.0 / 64;  // exact in binary, so that sums of frames are

    UIWindow& window() { return *UIApplication::sharedApplication().keyWindow(); }

    void frame(double seconds = frameTime) {
        installer_.clock.advance(seconds);
        host.update(1e9);
    }
    void run(double seconds) {
        for (double left = seconds; left > 0; left -= frameTime) frame();
    }

    /// Down, a movement of several steps over `seconds`, and up.
    InputResult drag(CGPoint from, CGPoint to, double seconds, int steps = 8) {
        const InputResult result = host.pointerDown(0, from);
        for (int step = 1; step <= steps; ++step) {
            const double share = static_cast<double>(step) / steps;
            installer_.clock.advance(seconds / steps);
            host.pointerMoved(0, {from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share});
        }
        host.pointerUp(0, to);
        return result;
    }
    InputResult tap(CGPoint point) { return drag(point, point, 0.05, 1); }

    template <class T = UIView>
    Ref<T> add(UIView& parent, const CGRect& frame, const UIColor& color = UIColor::clearColor()) {
        auto view = make<T>();
        view->setFrame(frame);
        view->setBackgroundColor(color);
        parent.addSubview(*view);
        return view;
    }

    VirtualClock& clock() { return installer_.clock; }

private:
    ClockInstaller installer_;

protected:
    UIHost host{{667, 375}, 2};
};

/// Writes down what happens to it.
class RecordingView : public UIView {
public:
    std::vector<std::string> events;

    void touchesBegan(UITouch&) override { events.push_back("began"); }
    void touchesMoved(UITouch&) override { events.push_back("moved"); }
    void touchesEnded(UITouch&) override { events.push_back("ended"); }
    void touchesCancelled(UITouch&) override { events.push_back("cancelled"); }
    void pointerEntered() override { events.push_back("entered"); }
    void pointerExited() override { events.push_back("exited"); }
};

}  // namespace flarebox::testing
