#include <Foundation/Clock.h>
#include <UIKit/TouchDispatcher.h>
#include <UIKit/UIGestureRecognizer.h>
#include <UIKit/UITouch.h>
#include <UIKit/UIWindow.h>

#include <algorithm>
#include <utility>

namespace flarebox {
namespace {

using Phase = void (UIGestureRecognizer::*)(UITouch&);
constexpr int mousePointer = 0;

bool holds(const std::vector<Weak<UIView>>& views, const UIView* view) {
    return std::ranges::any_of(views, [view](const Weak<UIView>& each) { return each.get() == view; });
}

}  // namespace

/// One touch of the panel's: the view it began in has it until a recogniser takes it over.
struct TouchDispatcher::Track {
    Ref<UITouch> touch;
    Weak<UIView> view;
    std::vector<Ref<UIGestureRecognizer>> recognizers;
    bool viewHasTouch = true;

    void tellRecognizers(Phase phase) {
        const auto all = recognizers;
        for (const auto& recognizer : all) {
            ((*recognizer).*phase)(*touch);
            if (recognizer->state() == UIGestureRecognizer::State::Recognized) return handOver(recognizer);
        }
        std::erase_if(recognizers, [](const Ref<UIGestureRecognizer>& each) {
            if (each->state() != UIGestureRecognizer::State::Failed) return false;
            each->reset();
            return true;
        });
    }

    void handOver(const Ref<UIGestureRecognizer>& winner) {
        const auto losers = std::exchange(recognizers, {winner});
        for (const auto& loser : losers) {
            if (loser == winner) continue;
            loser->touchesCancelled(*touch);
            loser->reset();
        }
        takeFromView();
    }

    void takeFromView() {
        if (!std::exchange(viewHasTouch, false)) return;
        if (const Ref<UIView> held = view.lock()) held->touchesCancelled(*touch);
    }

    /// A view that has left its window sees no more than the end of its touch.
    void dropViewOutside(const UIWindow& window) {
        const Ref<UIView> held = view.lock();
        if (!held || held->window() != &window) takeFromView();
    }
};

TouchDispatcher::TouchDispatcher(UIWindow& window) : window_(window) {}
TouchDispatcher::~TouchDispatcher() = default;

TouchDispatcher::TrackRef TouchDispatcher::track(int pointer) const {
    const auto found = tracks_.find(pointer);
    return found == tracks_.end() ? nullptr : found->second;
}

bool TouchDispatcher::isFollowed(const UIGestureRecognizer& recognizer) const {
    return std::ranges::any_of(tracks_, [&](const auto& entry) {
        return entry.second && std::ranges::any_of(entry.second->recognizers,
                                                   [&](const auto& each) { return each.get() == &recognizer; });
    });
}

TouchDispatcher::TrackRef TouchDispatcher::begin(int pointer, CGPoint point, UIView& view) {
    auto track = std::make_shared<Track>();
    track->touch = make<UITouch>(pointer, view, point, Clock::current().uptime());
    track->view = Weak<UIView>(&view);
    for (UIView* each = &view; each; each = each->superview()) {
        for (const Ref<UIGestureRecognizer>& recognizer : each->gestureRecognizers()) {
            if (recognizer->isEnabled() && !isFollowed(*recognizer)) track->recognizers.push_back(recognizer);
        }
    }
    return track;
}

InputResult TouchDispatcher::down(int pointer, CGPoint point) {
    // The end of an earlier touch may have been lost.
    cancelled(pointer);
    const Ref<UIView> view(window_.hitTest(point));
    if (!view) {
        tracks_[pointer] = nullptr;
        return InputResult::Ignored;
    }
    const TrackRef track = begin(pointer, point, *view);
    tracks_[pointer] = track;
    track->tellRecognizers(&UIGestureRecognizer::touchesBegan);
    if (track->viewHasTouch) view->touchesBegan(*track->touch);
    return InputResult::Consumed;
}

InputResult TouchDispatcher::moved(int pointer, CGPoint point) {
    const TrackRef track = this->track(pointer);
    if (!track) return InputResult::Ignored;
    track->touch->update(UITouchPhase::Moved, point, Clock::current().uptime());
    track->dropViewOutside(window_);
    track->tellRecognizers(&UIGestureRecognizer::touchesMoved);
    const Ref<UIView> view = track->view.lock();
    if (view && track->viewHasTouch) view->touchesMoved(*track->touch);
    return InputResult::Consumed;
}

InputResult TouchDispatcher::up(int pointer, CGPoint point) {
    auto node = tracks_.extract(pointer);
    if (node.empty() || !node.mapped()) return InputResult::Ignored;
    end(*node.mapped(), false, point);
    if (pointer == mousePointer && hoverPoint_) {
        hoverPoint_ = point;
        refreshHover();
    }
    return InputResult::Consumed;
}

void TouchDispatcher::cancelled(int pointer) {
    auto node = tracks_.extract(pointer);
    if (node.empty() || !node.mapped()) return;
    end(*node.mapped(), true, node.mapped()->touch->locationInView(nullptr));
}

void TouchDispatcher::cancelAll() {
    while (!tracks_.empty()) cancelled(tracks_.begin()->first);
}

void TouchDispatcher::end(Track& track, bool isCancelled, CGPoint point) {
    UITouch& touch = *track.touch;
    touch.update(isCancelled ? UITouchPhase::Cancelled : UITouchPhase::Ended, point, Clock::current().uptime());
    track.dropViewOutside(window_);
    // The touch is over even if an action throws.
    const struct Reset {
        ~Reset() {
            for (const auto& recognizer : track.recognizers) recognizer->reset();
        }
        Track& track;
    } reset{track};
    track.tellRecognizers(isCancelled ? &UIGestureRecognizer::touchesCancelled : &UIGestureRecognizer::touchesEnded);
    if (isCancelled) {
        track.takeFromView();
    } else if (const Ref<UIView> view = track.view.lock(); view && track.viewHasTouch) {
        view->touchesEnded(touch);
    }
}

InputResult TouchDispatcher::hovered(CGPoint point) {
    const bool hasMoved = std::exchange(hoverPoint_, point) != point;
    // While a button is held the pointer stays with what it was pressed on.
    if (const auto held = tracks_.find(mousePointer); held != tracks_.end()) {
        return held->second ? InputResult::Consumed : InputResult::Ignored;
    }
    UIView* const hit = window_.hitTest(point);
    if (!isHovered(hit)) {
        std::vector<Weak<UIView>> views;
        for (UIView* view = hit; view && view != &window_; view = view->superview()) views.emplace_back(view);
        hoverOver(std::move(views));
    }
    const bool isOver = !hovered_.empty();
    if (hasMoved) tellMoved();
    return isOver ? InputResult::Consumed : InputResult::Ignored;
}

/// Whether the pointer was over this view and those around it already, as it is in most frames.
bool TouchDispatcher::isHovered(const UIView* hit) const {
    auto known = hovered_.begin();
    for (const UIView* view = hit; view && view != &window_; view = view->superview(), ++known) {
        if (known == hovered_.end() || known->get() != view) return false;
    }
    return known == hovered_.end();
}

void TouchDispatcher::left() {
    hoverPoint_.reset();
    hoverOver({});
}

void TouchDispatcher::refreshHover() {
    if (hoverPoint_) hovered(*hoverPoint_);
}

void TouchDispatcher::hoverOver(std::vector<Weak<UIView>> views) {
    const auto former = std::exchange(hovered_, views);
    for (const Weak<UIView>& each : former) {
        const Ref<UIView> view = each.lock();
        if (view && !holds(views, view.get())) view->pointerExited();
    }
    std::ranges::reverse(views);
    for (const Weak<UIView>& each : views) {
        const Ref<UIView> view = each.lock();
        if (view && !holds(former, view.get())) view->pointerEntered();
    }
}

void TouchDispatcher::tellMoved() {
    const auto views = hovered_;
    for (const Weak<UIView>& each : views) {
        if (const Ref<UIView> view = each.lock()) view->pointerMoved();
    }
}

InputResult TouchDispatcher::scrolled(CGPoint point, CGFloat dx, CGFloat dy) {
    Ref<UIView> view(window_.hitTest(point));
    if (!view) return InputResult::Ignored;
    while (view && view.get() != &window_ && !view->scrollWheel(convertPointFromScreen(point, *view), dx, dy)) {
        view = Ref<UIView>(view->superview());
    }
    return InputResult::Consumed;
}

}  // namespace flarebox
