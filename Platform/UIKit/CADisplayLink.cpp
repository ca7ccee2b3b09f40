#include <UIKit/CADisplayLink.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace flarebox {
namespace {

std::vector<CADisplayLink*>& activeLinks() {
    static std::vector<CADisplayLink*> links;
    return links;
}

}  // namespace

CADisplayLink::CADisplayLink(std::function<void(double now)> callback) : callback_(std::move(callback)) {
    activeLinks().push_back(this);
}

CADisplayLink::~CADisplayLink() {
    std::erase(activeLinks(), this);
}

bool CADisplayLink::isAnyActive() {
    return !activeLinks().empty();
}

void CADisplayLink::runFrame(double now) {
    const std::vector<CADisplayLink*> links = activeLinks();
    for (CADisplayLink* link : links) {
        if (std::ranges::find(activeLinks(), link) == activeLinks().end()) continue;
        // A copy: the callback may destroy its own link.
        const auto callback = link->callback_;
        callback(now);
    }
}

}  // namespace flarebox
