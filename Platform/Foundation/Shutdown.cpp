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

}  // namespace

void Shutdown::addHandler(std::function<void()> handler) {
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
