#include <Foundation/Shutdown.h>

#include <Foundation/Immortal.h>
#include <Foundation/MainQueue.h>

#include <cstdlib>
#include <utility>
#include <vector>

namespace flarebox {

namespace {

using Handlers = std::vector<std::function<void()>>;

Handlers& handlers() {
    static detail::Immortal<Handlers> list;
    return *list;
}

/// A thread's own objects go first when it ends the process. Functions given to `atexit` come after those of libraries
/// that were loaded later, a graphics driver's compiler for example, which then have put away what our threads still
/// use.
struct ThreadEnd {
    bool isAwaited = false;
    ~ThreadEnd() {
        // The host may have moved on to another thread.
        if (isAwaited && isMainThread()) Shutdown::run();
    }
};
thread_local ThreadEnd mainThreadEnd;

}  // namespace

void Shutdown::addHandler(std::function<void()> handler) {
    mainThreadEnd.isAwaited = true;
    // For a process that another thread ends.
    [[maybe_unused]] static const int registered = std::atexit([] { Shutdown::run(); });
    if (handler) handlers().push_back(std::move(handler));
}

void Shutdown::run() {
    while (!handlers().empty()) {
        auto handler = std::move(handlers().back());
        handlers().pop_back();
        handler();
    }
    MainQueue::shared().removeAll();
}

}  // namespace flarebox
