#pragma once

#include <Foundation/Export.h>

#include <functional>
#include <memory>

namespace flarebox {

/// Calls back once a frame for as long as it exists: what moves by itself holds one while it moves. Main thread.
class FLAREBOX_EXPORT CADisplayLink {
public:
    /// `callback` gets the clock's uptime in seconds. It may destroy this or any other link. One that
    /// throws is called again the next time.
    explicit CADisplayLink(std::function<void(double now)> callback);
    ~CADisplayLink();
    CADisplayLink(const CADisplayLink&) = delete;
    CADisplayLink& operator=(const CADisplayLink&) = delete;

    /// Whether any link exists.
    static bool isAnyActive();
    /// Calls all that existed before the call; the host does so once a frame.
    static void runFrame(double now);

private:
    const std::shared_ptr<const std::function<void(double)>> callback_;
};

}  // namespace flarebox
