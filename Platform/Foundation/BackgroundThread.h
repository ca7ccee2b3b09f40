#pragma once

namespace flarebox {

/// Names the calling thread, which debuggers show (15 letters at most), and has it leave the processors to the host's
/// own threads where there are not enough for all. Threads that it starts do the same. For threads whose work nobody
/// waits for within a frame.
void becomeBackgroundThread(const char* name);

}  // namespace flarebox
