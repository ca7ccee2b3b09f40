#include <Foundation/Clock.h>
#include <Foundation/Immortal.h>
#include <Foundation/MainQueue.h>
#include <UIKit/UIAccessibility.h>
#include <UIKit/UIViewState.h>
#include <UIKit/ViewAnimations.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace flarebox {
namespace {

/// What one `run` changed. Completes when the last of its movements is over.
struct Group {
    double start = 0, duration = 0;
    bool isFinished = true;
    std::function<void(bool)> completion;

    ~Group() {
        if (!completion) return;
        dispatch_async_main([completion = std::move(completion), finished = isFinished] { completion(finished); });
    }
};

struct FrameMovement {
    UIView* view;
    CGRect from, to;
    std::shared_ptr<Group> group;
};

struct AlphaMovement {
    UIView* view;
    CGFloat from, to;
    std::shared_ptr<Group> group;
};

struct Running {
    std::vector<FrameMovement> frames;
    std::vector<AlphaMovement> alphas;
    /// What is being changed belongs to it; null outside animations.
    std::shared_ptr<Group> group;
};

Running& running() {
    static detail::Immortal<Running> instance;
    return *instance;
}

class GroupScope {
public:
    explicit GroupScope(std::shared_ptr<Group> group) : previous_(std::exchange(running().group, std::move(group))) {}
    ~GroupScope() { running().group = std::move(previous_); }
    GroupScope(const GroupScope&) = delete;
    GroupScope& operator=(const GroupScope&) = delete;

private:
    std::shared_ptr<Group> previous_;
};

CGFloat between(CGFloat from, CGFloat to, double progress) {
    return from + (to - from) * progress;
}

CGRect between(const CGRect& from, const CGRect& to, double progress) {
    return CGRectMake(between(from.minX(), to.minX(), progress), between(from.minY(), to.minY(), progress),
                      between(from.width(), to.width(), progress), between(from.height(), to.height(), progress));
}

/// Whether the view looks the same all the way, at other places.
bool onlyMoves(const FrameMovement& movement) {
    return movement.from.size == movement.to.size;
}
bool onlyMoves(const AlphaMovement&) {
    return true;
}

/// The view's movement when it belongs to the group of the moment, and may simply be given another end; null otherwise.
template <class Movement>
Movement* movementOfGroup(std::vector<Movement>& movements, const UIView& view) {
    const auto found = std::ranges::find(movements, &view, &Movement::view);
    return found != movements.end() && found->group == running().group ? &*found : nullptr;
}

/// Takes a view's movement out; whoever waits for its group learns that it did not get to its end.
template <class Movement>
void supersede(std::vector<Movement>& movements, const UIView& view) {
    std::erase_if(movements, [&](const Movement& movement) {
        if (movement.view != &view) return false;
        movement.group->isFinished = false;
        return true;
    });
}

}  // namespace

// A cubic Bézier curve from 0,0 to 1,1 with the control points 0.42,0 and 0.58,1.
double ViewAnimations::easeInOut(double time) {
    if (!(time > 0)) return 0;
    if (time >= 1) return 1;
    constexpr double x1 = 0.42, x2 = 0.58;
    // Newton's method: x rises steadily, so that a few steps are exact far below a pixel.
    double t = time;
    for (int step = 0; step < 6; ++step) {
        const double u = 1 - t;
        const double x = 3 * x1 * u * u * t + 3 * x2 * u * t * t + t * t * t;
        const double slope = 3 * x1 * u * u + 6 * (x2 - x1) * u * t + 3 * (1 - x2) * t * t;
        t -= (x - time) / slope;
    }
    return t * t * (3 - 2 * t);
}

bool ViewAnimations::isAnimating() {
    return !running().frames.empty() || !running().alphas.empty();
}

template <class Movement, class Property>
void ViewAnimations::move(std::vector<Movement>& movements, Property property, double now) {
    std::erase_if(movements, [&](const Movement& movement) {
        const bool isAtOnce = UIAccessibilityIsReduceMotionEnabled();
        const double progress = isAtOnce ? 1 : easeInOut((now - movement.group->start) / movement.group->duration);
        auto& shown = movement.view->animationState_.get()->*property;
        if (progress >= 1) {
            shown.reset();
            movement.view->markChanged();
            return true;
        }
        shown = between(movement.from, movement.to, progress);
        if (onlyMoves(movement))
            UIView::RenderState::markMoved(*movement.view, detail::DisplayList::Carries::View);
        else
            movement.view->markChanged();
        return false;
    });
}

bool ViewAnimations::tick(double now) {
    if (!isAnimating()) return false;
    move(running().frames, &UIView::AnimationState::frame, now);
    move(running().alphas, &UIView::AnimationState::alpha, now);
    return true;
}

template <class Movement, class Property>
void ViewAnimations::end(std::vector<Movement>& movements, Property property) {
    for (const Movement& movement : movements) {
        movement.group->completion = nullptr;
        (movement.view->animationState_.get()->*property).reset();
        movement.view->markChanged();
    }
    movements.clear();
}

void ViewAnimations::removeAll() {
    end(running().frames, &UIView::AnimationState::frame);
    end(running().alphas, &UIView::AnimationState::alpha);
}

void ViewAnimations::run(double duration, const std::function<void()>& animations,
                         std::function<void(bool)> completion) {
    auto group = std::make_shared<Group>();
    group->start = Clock::current().uptime();
    group->duration = duration;
    group->completion = std::move(completion);
    const bool isShownOverTime = duration > 0 && !UIAccessibilityIsReduceMotionEnabled();
    const GroupScope scope(isShownOverTime ? group : nullptr);
    if (animations) animations();
}

void ViewAnimations::runWithout(const std::function<void()>& changes) {
    const GroupScope scope(nullptr);
    if (changes) changes();
}

template <class Movement, class Property, class Shown>
void ViewAnimations::change(std::vector<Movement>& movements, Property property, UIView& view, const Shown& shown,
                            const Shown& end, bool canMove) {
    const bool isMoving = view.animationState_ && (view.animationState_.get()->*property);
    if (isMoving) {
        if (Movement* own = movementOfGroup(movements, view)) {
            own->to = end;
            return;
        }
        supersede(movements, view);
    }
    if (running().group && canMove) {
        if (!view.animationState_) view.animationState_ = std::make_unique<UIView::AnimationState>();
        view.animationState_.get()->*property = shown;
        movements.push_back({&view, shown, end, running().group});
    } else if (isMoving) {
        (view.animationState_.get()->*property).reset();
    }
}

void ViewAnimations::frameWillChange(UIView& view, const CGRect& frame) {
    const CGRect shown = view.presentationFrame();
    // A view that had no size was not to be seen, so there is nothing to start from.
    change(running().frames, &UIView::AnimationState::frame, view, shown, frame, !shown.isEmpty());
}

void ViewAnimations::alphaWillChange(UIView& view, CGFloat alpha) {
    change(running().alphas, &UIView::AnimationState::alpha, view, view.presentationAlpha(), alpha, true);
}

void ViewAnimations::forget(UIView& view) {
    if (!view.animationState_) return;
    supersede(running().frames, view);
    supersede(running().alphas, view);
}

}  // namespace flarebox
