#pragma once

#include "Gestures.h"

#include <span>

namespace flarebox::hostgame {

/// Calls an operation that the tab offers to the host, by its name ("open", "showFlareboxButton",
/// "toggleFlarebox:animated:"), with arguments as texts. What it answers is printed. `init` makes another tab, which
/// the script means from then on.
Failure callOperation(Game& game, const std::string& name, std::span<const std::string> arguments);

}  // namespace flarebox::hostgame
