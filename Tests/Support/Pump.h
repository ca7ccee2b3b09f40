#pragma once

#include <Foundation/MainQueue.h>

#include <chrono>
#include <functional>
#include <thread>

namespace flarebox::testing {

/// Runs the main queue until the condition holds; false when `seconds` of real time have passed first.
inline bool pumpUntil(const std::function<bool()>& condition, double seconds = 20) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        if (!MainQueue::shared().run()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// Runs the main queue until nothing is due or under way.
inline bool pumpUntilIdle(double seconds = 20) {
    return pumpUntil([] { return MainQueue::shared().isIdle(); }, seconds);
}

}  // namespace flarebox::testing
