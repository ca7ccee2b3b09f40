#pragma once

namespace flarebox {

/// From now on the log says, at info level, when a turn has held the main thread for longer than the host's budget
/// (`UIHost::setTurnBudget`): for how long, and its longest parts. Main thread.
void logLongTurns();

}  // namespace flarebox
