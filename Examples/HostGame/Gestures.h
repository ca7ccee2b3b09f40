#pragma once

#include "Game.h"

#include <optional>
#include <string>
#include <string_view>

namespace flarebox::hostgame {

/// Why something was not done; none when it was.
using Failure = std::optional<std::string>;

/// A tap in the middle of what can be seen of the view. Fails where the touch would not reach the view.
Failure tap(Game& game, UIView& view);
/// What does not hit the panel is a shot in the game.
void tap(Game& game, CGPoint point);
/// A quick movement across the middle of the view: left, right, up or down.
Failure swipe(Game& game, UIView& view, std::string_view direction);
/// Two fingers on the middle of the view, moving apart until they are `factor` times as far from each other, or
/// together.
Failure pinch(Game& game, UIView& view, double factor);
/// A slow movement.
void drag(Game& game, CGPoint from, CGPoint to);

}  // namespace flarebox::hostgame
