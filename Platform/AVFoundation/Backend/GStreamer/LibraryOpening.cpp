#include "LibraryOpening.h"

#include <Foundation/Immortal.h>

#include <gst/gst.h>

namespace flarebox {

LibraryOpening& LibraryOpening::shared() {
    // Never destroyed: the process may end while the thread still runs.
    static detail::Immortal<LibraryOpening> opening;
    return *opening;
}

LibraryOpening::State LibraryOpening::waitFor(std::chrono::milliseconds patience) {
    std::unique_lock lock(mutex_);
    if (state_ == State::Closed) {
        // Without a thread it is tried again with the next video.
        if (!thread_.start("flarebox-video+", [this] { run(); })) return State::Failed;
        state_ = State::Opening;
    }
    changed_.wait_for(lock, patience, [this] { return state_ != State::Opening; });
    if (state_ != State::Opening) thread_.join();
    return state_;
}

void LibraryOpening::run() {
    const bool isOpen = gst_init_check(nullptr, nullptr, nullptr);
    const std::lock_guard lock(mutex_);
    state_ = isOpen ? State::Open : State::Failed;
    changed_.notify_all();
}

}  // namespace flarebox
