#pragma once

#include <functional>

namespace flarebox {

/// Calls back once a frame for as long as it exists: what moves by itself holds one while it moves. Main thread.
class CADisplayLink {
public:
    /// `callback` gets the clock's uptime in seconds. It may destroy this or any other link.
    explicit CADisplayLink(std::function<void(double now)> callback);
    ~CADisplayLink();
    CADisplayLink(const CADisplayLink&) = delete;
    CADisplayLink& operator=(const CADisplayLink&) = delete;

    /// Whether any link exists.
    static bool isAnyActive();
    /// Calls all that existed before the call; the host does so once a frame.
    static void runFrame(double now);

private:
    std::function<void(double)> callback_;
};

}  // namespace flarebox
