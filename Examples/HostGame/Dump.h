#pragma once

#include "Game.h"

#include <Foundation/Values.h>

namespace flarebox::hostgame {

/// The state of the tab and of what it shows, ready to be written as one JSON object. Lengths are points of the window,
/// after any movement that is under way.
NSDictionary dump(Game& game);

}  // namespace flarebox::hostgame
