#pragma once

#include "Gestures.h"

#include <span>
#include <string>

namespace flarebox::hostgame {

/// Calls an operation that the tab offers to the host, by its name ("open", "showFlareboxButton",
/// "toggleFlarebox:animated:"), with arguments as texts. What it answers is printed. `init` makes another tab, which
/// the script means from then on.
Failure callOperation(Game& game, const std::string& name, std::span<const std::string> arguments);
/// All of them, with what they take.
std::string operationsHelp();

}  // namespace flarebox::hostgame
