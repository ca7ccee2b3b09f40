#include "Recorder.h"

#include "Fields.h"

#include <Foundation/Clock.h>
#include <Foundation/MainQueue.h>
#include <UIKit/UICollectionView.h>
#include <UIKit/UIControl.h>

#include <cmath>
#include <string_view>

namespace flarebox::hostgame {
namespace {

/// Points within which a touch is a tap.
constexpr CGFloat tapSlop = 8;
/// Seconds and points that make a quick movement.
constexpr double swipeTime = 0.4;
constexpr CGFloat swipeLength = 50;
/// Seconds between two turns of the wheel that belong together; shorter pauses than the second are not worth a line.
constexpr double scrollPause = 0.25, shortestPause = 0.05;

CGFloat distance(CGPoint from, CGPoint to) {
    return std::hypot(to.x - from.x, to.y - from.y);
}

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", std::round(value * 100) / 100);
    return text;
}

std::string pointText(CGPoint point) {
    return number(point.x) + " " + number(point.y);
}

std::string_view directionOf(CGPoint from, CGPoint to) {
    const CGFloat dx = to.x - from.x, dy = to.y - from.y;
    if (std::abs(dx) >= std::abs(dy)) return dx < 0 ? "left" : "right";
    return dy < 0 ? "up" : "down";
}

/// The shortest name of the field that holds the view; empty when none does.
std::string fieldOf(const FlareboxView& tab, const UIView& view) {
    std::string found;
    forEachField(tab, [&](const std::string& name, NSObject& object) {
        if (&object == static_cast<const NSObject*>(&view) && (found.empty() || name.size() < found.size()))
            found = name;
    });
    return found;
}

std::string itemOf(const FlareboxView& tab, const UIView& view) {
    const auto* list = dynamic_cast<const UICollectionView*>(findField(tab, "collectionView").object);
    if (!list) return {};
    for (const NSIndexPath& path : list->indexPathsForVisibleItems()) {
        if (list->cellForItemAtIndexPath(path).get() == &view) return "cell " + std::to_string(path.row);
    }
    return {};
}

}  // namespace

std::unique_ptr<Recorder> Recorder::start(Game& game, const std::string& path) {
    File file(std::fopen(path.c_str(), "w"));
    if (!file) return nullptr;
    return std::unique_ptr<Recorder>(new Recorder(game, std::move(file)));
}

Recorder::Recorder(Game& game, File file) : game_(game), file_(std::move(file)), lastEnd_(Clock::current().uptime()) {
    game_.screen().host().setInputObserver(
        [this](const InputEvent& event, InputResult result) { note(event, result); });
}

Recorder::~Recorder() {
    endScrolling();
    game_.screen().host().setInputObserver(nullptr);
}

void Recorder::note(const InputEvent& event, InputResult result) {
    using enum InputEvent::Kind;
    if (event.kind != Scrolled) endScrolling();
    switch (event.kind) {
        case PointerDown:
            if (gesture_)
                gesture_->firstSpread = gesture_->spread = distance(gesture_->to, event.point);
            else if (result == InputResult::Consumed)
                begin(event);
            break;
        case PointerMoved:
            if (gesture_) follow(event);
            break;
        case PointerUp:
            if (gesture_) end();
            break;
        case PointerCancelled:
            gesture_.reset();
            break;
        case Scrolled:
            if (result == InputResult::Consumed) addScrolling(event);
            break;
        case KeyDown:
            if (result == InputResult::Consumed) writeAfterPause("key " + std::string(event.key));
            break;
        case Pressed:
            if (result == InputResult::Consumed) writeAfterPause("press " + std::string(nameOf(event.press)));
            break;
        case FocusTaken:
            // The game may have opened the tab for it; where it was open this does nothing.
            if (game_.tab().isOpened()) writeAfterPause("call open");
            writeAfterPause("call takeFocus");
            break;
        case FocusGivenBack:
            writeAfterPause("call giveBackFocus");
            break;
    }
}

void Recorder::begin(const InputEvent& event) {
    gesture_.emplace();
    gesture_->start = Clock::current().uptime();
    gesture_->isRested = MainQueue::shared().isIdle();
    gesture_->pointer = event.pointer;
    gesture_->from = gesture_->to = event.point;
    UIWindow* window = game_.window();
    for (const UIView* view = window ? window->hitTest(pointInWindow(event.point)) : nullptr; view;
         view = view->superview()) {
        const std::string field = fieldOf(game_.tab(), *view);
        if (gesture_->field.empty()) gesture_->field = field;
        if (!gesture_->target.empty()) continue;
        gesture_->target = itemOf(game_.tab(), *view);
        if (!field.empty() && dynamic_cast<const UIControl*>(view)) gesture_->target = "tap " + field;
    }
}

void Recorder::follow(const InputEvent& event) {
    if (event.pointer == gesture_->pointer)
        gesture_->to = event.point;
    else
        gesture_->spread = distance(gesture_->to, event.point);
}

void Recorder::end() {
    const RecordedGesture gesture = *gesture_;
    gesture_.reset();
    writePause(gesture.start, gesture.isRested);
    const CGFloat way = distance(gesture.from, gesture.to);
    const bool isQuick = Clock::current().uptime() - gesture.start < swipeTime && way >= swipeLength;
    if (gesture.firstSpread && !gesture.field.empty())
        write("pinch " + gesture.field + " " + number(*gesture.spread / std::max(*gesture.firstSpread, 1.0)));
    else if (way < tapSlop)
        write(gesture.target.empty() ? "tap " + pointText(gesture.from) : gesture.target);
    else if (isQuick && !gesture.field.empty())
        write("swipe " + gesture.field + " " + std::string(directionOf(gesture.from, gesture.to)));
    else
        write("drag " + pointText(gesture.from) + " " + pointText(gesture.to));
}

void Recorder::addScrolling(const InputEvent& event) {
    const double now = Clock::current().uptime();
    if (scrolling_ && (now - scrolling_->last > scrollPause || distance(scrolling_->point, event.point) > tapSlop))
        endScrolling();
    if (!scrolling_) {
        writePause(now, false);
        scrolling_.emplace();
        scrolling_->point = event.point;
    }
    scrolling_->dx += event.dx;
    scrolling_->dy += event.dy;
    scrolling_->last = now;
}

void Recorder::endScrolling() {
    if (!scrolling_) return;
    const RecordedScrolling scrolling = *scrolling_;
    scrolling_.reset();
    write("scroll " + pointText(scrolling.point) + " " + number(scrolling.dx) + " " + number(scrolling.dy));
    lastEnd_ = scrolling.last;
}

void Recorder::writePause(double start, bool isRested) {
    if (start - lastEnd_ >= shortestPause) write("wait " + number(start - lastEnd_));
    if (isRested) write("await idle 60");
}

void Recorder::writeAfterPause(const std::string& command) {
    writePause(Clock::current().uptime(), false);
    write(command);
}

void Recorder::write(const std::string& command) {
    std::fprintf(file_.get(), "%s\n", command.c_str());
    std::fflush(file_.get());
    lastEnd_ = Clock::current().uptime();
}

}  // namespace flarebox::hostgame
