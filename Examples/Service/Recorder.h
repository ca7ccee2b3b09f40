#pragma once

#include "Behaviour.h"
#include "ReceivedRequest.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox::examples {

/// What a test tells the service to do, and what the service tells the test it was asked. Safe on any thread.
class Recorder {
public:
    void record(ReceivedRequest request);
    std::vector<ReceivedRequest> requests() const;
    std::vector<ReceivedRequest> requests(std::string_view path) const;
    bool waitForRequests(std::string_view path, std::size_t count, std::chrono::milliseconds time) const;
    void forgetRequests();

    void behave(std::string_view path, Behaviour behaviour);
    void behaveNormally();
    /// The behaviour for the next request on the path, which uses up one of its times.
    Behaviour takeBehaviour(std::string_view path);

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable arrived_;
    std::deque<ReceivedRequest> requests_;
    std::map<std::string, Behaviour, std::less<>> behaviours_;
};

}  // namespace flarebox::examples
