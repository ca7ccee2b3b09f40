#pragma once

#include <Foundation/Thread.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace flarebox {

/// Loads the library, once for the process. The first time on a machine it looks at all of its plug-ins, which takes a
/// second that cannot be interrupted: so that happens on a thread of its own, which neither a video nor the end of the
/// process has to wait for. Nothing of the library is in use before it is done.
class LibraryOpening {
public:
    static LibraryOpening& shared();

    enum class State : std::uint8_t { Closed, Opening, Open, Failed };
    /// Begins unless that has happened, and waits so long at most for what comes of it. Video thread.
    State waitFor(std::chrono::milliseconds patience);

private:
    void run();

    std::mutex mutex_;
    std::condition_variable changed_;
    State state_ = State::Closed;
    Thread thread_;
};

}  // namespace flarebox
