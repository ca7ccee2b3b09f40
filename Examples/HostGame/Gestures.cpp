#include "Gestures.h"

#include "Fields.h"

#include <UIKit/UIWindow.h>

#include <algorithm>
#include <cmath>

namespace flarebox::hostgame {
namespace {

constexpr int pointer = 0, secondPointer = 1;
constexpr double swipeTime = 0.15, shortestDragTime = 0.75, pinchTime = 0.4;
/// Points a second: too slow for a swipe, however long the way.
constexpr CGFloat dragPace = 90;
constexpr CGFloat shortestSwipe = 80, longestSwipe = 200;

CGPoint middleOf(const CGRect& rect) {
    return {rect.midX(), rect.midY()};
}

/// Why a touch at that point would not reach the view.
Failure obstacle(Game& game, const UIView& view, CGPoint point) {
    UIWindow* window = game.window();
    if (!window || view.window() != window) return "is in no window";
    const UIView* hit = window->hitTest(pointInWindow(point));
    if (!hit) return "takes no touch";
    // A label takes no touches itself; the view that it lies on does.
    if (hit == &view || hit->isDescendantOfView(view) || view.isDescendantOfView(*hit)) return std::nullopt;
    return "is covered by another view";
}

Failure whyUnreachable(Game& game, const UIView& view) {
    if (!view.isVisibleInWindow()) return "is hidden";
    const CGRect rect = visibleRect(view);
    if (rect.isEmpty()) return "is off the screen";
    return obstacle(game, view, middleOf(rect));
}

void move(Game& game, CGPoint from, CGPoint to, double seconds) {
    UIHost& host = game.screen().host();
    const int steps = std::max(1, static_cast<int>(seconds * World::stepsPerSecond));
    host.pointerDown(pointer, from);
    for (int i = 1; i <= steps; ++i) {
        game.pass(seconds / steps);
        const CGFloat share = static_cast<CGFloat>(i) / steps;
        host.pointerMoved(pointer, {from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share});
    }
    host.pointerUp(pointer, to);
    game.frame();
}

CGPoint directionOf(std::string_view name) {
    if (name == "left") return {-1, 0};
    if (name == "right") return {1, 0};
    if (name == "up") return {0, -1};
    return {0, 1};
}

}  // namespace

Failure tap(Game& game, UIView& view) {
    if (Failure failure = whyUnreachable(game, view)) return failure;
    tap(game, middleOf(visibleRect(view)));
    return std::nullopt;
}

void tap(Game& game, CGPoint point) {
    UIHost& host = game.screen().host();
    if (host.pointerDown(pointer, point) == InputResult::Ignored) game.world().fire();
    game.frame();
    host.pointerUp(pointer, point);
    game.frame();
}

Failure swipe(Game& game, UIView& view, std::string_view direction) {
    if (Failure failure = whyUnreachable(game, view)) return failure;
    const CGRect rect = visibleRect(view);
    const CGPoint middle = middleOf(rect), way = directionOf(direction);
    const CGFloat side = way.x != 0 ? rect.width() : rect.height();
    const CGFloat length = std::clamp(side * 0.6, shortestSwipe, longestSwipe);
    // The touch has to begin on the view; a small one is left by it.
    const CGFloat before = std::min(length / 2, side * 0.4);
    const CGPoint from{middle.x - way.x * before, middle.y - way.y * before};
    if (Failure failure = obstacle(game, view, from)) return failure;
    move(game, from, {from.x + way.x * length, from.y + way.y * length}, swipeTime);
    return std::nullopt;
}

Failure pinch(Game& game, UIView& view, double factor) {
    if (Failure failure = whyUnreachable(game, view)) return failure;
    const CGRect rect = visibleRect(view);
    const CGPoint middle = middleOf(rect);
    const CGFloat longest = std::min(rect.width(), rect.height()) * 0.8 / 2;
    // The way that the fingers go fits the view, whichever end of it is the wide one.
    const CGFloat from = factor > 1 ? longest / factor : longest, to = from * factor;
    const auto left = [&](CGFloat distance) { return CGPoint{middle.x - distance, middle.y}; };
    const auto right = [&](CGFloat distance) { return CGPoint{middle.x + distance, middle.y}; };
    UIHost& host = game.screen().host();
    host.pointerDown(pointer, left(from));
    host.pointerDown(secondPointer, right(from));
    const int steps = static_cast<int>(pinchTime * World::stepsPerSecond);
    for (int i = 1; i <= steps; ++i) {
        game.pass(pinchTime / steps);
        const CGFloat distance = from + (to - from) * i / steps;
        host.pointerMoved(pointer, left(distance));
        host.pointerMoved(secondPointer, right(distance));
    }
    host.pointerUp(pointer, left(to));
    host.pointerUp(secondPointer, right(to));
    game.frame();
    return std::nullopt;
}

void drag(Game& game, CGPoint from, CGPoint to) {
    move(game, from, to, std::max(shortestDragTime, std::hypot(to.x - from.x, to.y - from.y) / dragPace));
}

}  // namespace flarebox::hostgame
