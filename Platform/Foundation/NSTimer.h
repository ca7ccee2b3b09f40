#pragma once

#include <Foundation/Export.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSObject.h>
#include <Foundation/Value.h>

#include <string>

namespace flarebox {

/// Performs an operation of its target after a time, once or again and again, on the main queue. Main thread only.
///
/// While it is valid, the queue keeps the timer and the timer keeps its target alive, so a repeating timer has to be
/// invalidated by somebody else than the target's destructor.
class FLAREBOX_EXPORT NSTimer : public NSObject {
    FLAREBOX_CLASS(NSTimer)
public:
    /// Starts at once. `interval` is in seconds; 0 or less means 0.0001. The selector is a listed action of the target
    /// and is handed the timer. A repeating timer that comes late performs once for all moments missed and keeps its
    /// phase.
    static Ref<NSTimer> scheduledTimer(double interval, NSObject& target, std::string_view selector, Value userInfo,
                                       bool repeats);

    /// Stops for good and lets the target go. More calls do nothing.
    void invalidate();
    bool isValid() const { return target_ != nullptr; }
    /// Performs now, beside the schedule; a timer that does not repeat is then done.
    void fire();

    double timeInterval() const { return interval_; }
    const Value& userInfo() const { return userInfo_; }

private:
    friend Ref<NSTimer> make<NSTimer>();
    NSTimer() = default;
    void schedule(double dueTime);
    void becameDue();

    Ref<NSObject> target_;
    std::string selector_;
    Value userInfo_;
    double interval_ = 0;
    bool repeats_ = false;
    MainQueue::Token token_ = 0;
};

}  // namespace flarebox
