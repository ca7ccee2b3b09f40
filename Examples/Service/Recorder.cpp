#include "Recorder.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace flarebox::examples {
namespace {

constexpr std::size_t mostRequests = 10000;

}  // namespace

void Recorder::record(ReceivedRequest request) {
    {
        std::lock_guard lock(mutex_);
        if (requests_.size() == mostRequests) requests_.pop_front();
        requests_.push_back(std::move(request));
    }
    arrived_.notify_all();
}

std::vector<ReceivedRequest> Recorder::requests() const {
    std::lock_guard lock(mutex_);
    return {requests_.begin(), requests_.end()};
}

std::vector<ReceivedRequest> Recorder::requests(std::string_view path) const {
    std::lock_guard lock(mutex_);
    std::vector<ReceivedRequest> found;
    std::copy_if(requests_.begin(), requests_.end(), std::back_inserter(found),
                 [&](const ReceivedRequest& request) { return request.path == path; });
    return found;
}

bool Recorder::waitForRequests(std::string_view path, std::size_t count, std::chrono::milliseconds time) const {
    std::unique_lock lock(mutex_);
    return arrived_.wait_for(lock, time, [&] {
        auto onPath = [&](const ReceivedRequest& request) { return request.path == path; };
        return static_cast<std::size_t>(std::count_if(requests_.begin(), requests_.end(), onPath)) >= count;
    });
}

void Recorder::forgetRequests() {
    std::lock_guard lock(mutex_);
    requests_.clear();
}

void Recorder::behave(std::string_view path, Behaviour behaviour) {
    std::lock_guard lock(mutex_);
    behaviours_.insert_or_assign(std::string(path), std::move(behaviour));
}

void Recorder::behaveNormally() {
    std::lock_guard lock(mutex_);
    behaviours_.clear();
}

Behaviour Recorder::takeBehaviour(std::string_view path) {
    std::lock_guard lock(mutex_);
    auto found = behaviours_.find(path);
    if (found == behaviours_.end()) return {};
    Behaviour behaviour = found->second;
    if (behaviour.times > 0 && --found->second.times == 0) behaviours_.erase(found);
    return behaviour;
}

}  // namespace flarebox::examples
