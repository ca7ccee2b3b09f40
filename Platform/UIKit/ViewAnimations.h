#pragma once

#include <UIKit/Geometry.h>

#include <functional>
#include <vector>

namespace flarebox {

class UIView;

/// The animations of all views. What is on screen is computed once a frame, by `tick`, and kept with the views; nothing
/// is laid out or drawn again for it. Main thread.
class ViewAnimations {
public:
    /// Moves every animation to the moment `now` (uptime of the clock in force, seconds) and ends those whose time has
    /// come: their completions go to the main queue. Returns whether anything on screen moved. The host adapter calls
    /// it once a frame.
    static bool tick(double now);
    static bool isAnimating();
    /// Shows everything where it ends; completions are dropped.
    static void removeAll();

    /// Where the platform's default curve is after a part of the time, both from 0 to 1.
    static double easeInOut(double time);

private:
    friend class UIView;
    static void run(double duration, const std::function<void()>& animations, std::function<void(bool)> completion);
    static void runWithout(const std::function<void()>& changes);
    /// The view is about to take a new frame or alpha: starts an animation inside `run`, ends a running one outside.
    static void frameWillChange(UIView& view, const CGRect& frame);
    static void alphaWillChange(UIView& view, CGFloat alpha);
    static void forget(UIView& view);

    template <class Movement, class Property>
    static void move(std::vector<Movement>& movements, Property property, double now);
    template <class Movement, class Property>
    static void end(std::vector<Movement>& movements, Property property);
    template <class Movement, class Property, class Shown>
    static void change(std::vector<Movement>& movements, Property property, UIView& view, const Shown& shown,
                       const Shown& end, bool canMove);
};

}  // namespace flarebox
