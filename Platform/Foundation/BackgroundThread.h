#pragma once

namespace flarebox {

/// Has the calling thread leave the processors to the host's own threads where there are not enough for all. Threads
/// that it starts do the same. For threads whose work nobody waits for within a frame.
void becomeBackgroundThread();

}  // namespace flarebox
