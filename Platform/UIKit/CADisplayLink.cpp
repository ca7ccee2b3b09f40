#include <UIKit/CADisplayLink.h>

#include <algorithm>
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
    static Links instance;
    return instance;
}

}  // namespace

CADisplayLink::CADisplayLink(std::function<void(double now)> callback) : callback_(std::move(callback)) {
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
    links().areCalled = true;
    // By index: callbacks may make links, whose turn comes with the next frame.
    const std::size_t count = all.size();
    for (std::size_t index = 0; index < count; ++index) {
        if (!all[index]) continue;
        // Taken out meanwhile: the callback may destroy its own link.
        std::function<void(double)> callback = std::move(all[index]->callback_);
        callback(now);
        if (all[index]) all[index]->callback_ = std::move(callback);
    }
    links().areCalled = false;
    std::erase(all, nullptr);
}

}  // namespace flarebox
