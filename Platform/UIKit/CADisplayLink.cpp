#include <UIKit/CADisplayLink.h>

#include <Foundation/Immortal.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace flarebox {
namespace {

struct Links {
    /// Null in the place of a link that went while links are called.
    std::vector<CADisplayLink*> all;
    bool areCalled = false;
};

Links& links() {
    // Views that a host keeps to the very end of the process still take their links out.
    static detail::Immortal<Links> instance;
    return *instance;
}

}  // namespace

CADisplayLink::CADisplayLink(std::function<void(double now)> callback)
    : callback_(std::make_shared<const std::function<void(double)>>(std::move(callback))) {
    links().all.push_back(this);
}

CADisplayLink::~CADisplayLink() {
    if (links().areCalled)
        std::ranges::replace(links().all, this, nullptr);
    else
        std::erase(links().all, this);
}

bool CADisplayLink::isAnyActive() {
    return std::ranges::any_of(links().all, [](const CADisplayLink* link) { return link != nullptr; });
}

void CADisplayLink::runFrame(double now) {
    std::vector<CADisplayLink*>& all = links().all;
    if (all.empty() || links().areCalled) return;
    // A callback may throw, which ends this frame and nothing else.
    const struct Calling {
        Calling() { links().areCalled = true; }
        ~Calling() {
            links().areCalled = false;
            std::erase(links().all, nullptr);
        }
    } calling;
    // By index: callbacks may make links, whose turn comes with the next frame.
    const std::size_t count = all.size();
    for (std::size_t index = 0; index < count; ++index) {
        if (!all[index]) continue;
        // Held here meanwhile: the callback may destroy its own link.
        const auto callback = all[index]->callback_;
        (*callback)(now);
    }
}

}  // namespace flarebox
