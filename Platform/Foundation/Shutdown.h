#pragma once

#include <functional>

namespace flarebox {

/// What has to stop before the process or the host adapter ends: worker threads, mostly.
/// Handlers run in reverse order of registration, once; registering again after that starts anew, so a second
/// host adapter in one process works. Main thread.
class Shutdown {
public:
    static void addHandler(std::function<void()> handler);
    /// Runs and forgets all handlers, then drops what is left on the main queue, so that nothing is called back any
    /// more. Runs by itself at the end of the main thread or of the process.
    static void run();
};

}  // namespace flarebox
