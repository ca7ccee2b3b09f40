#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSObject.h>

#include <cstdint>
#include <functional>

namespace flarebox {

/// How the network can be reached.
enum AFNetworkReachabilityStatus : std::int64_t {
    AFNetworkReachabilityStatusUnknown = -1,
    AFNetworkReachabilityStatusNotReachable = 0,
    AFNetworkReachabilityStatusReachableViaWWAN = 1,
    /// Also stands for a cable.
    AFNetworkReachabilityStatusReachableViaWiFi = 2,
};

/// Knows the state of the network. A host that knows better than the built-in monitor supplies its own.
class FLAREBOX_EXPORT NetworkMonitor : public NSObject {
public:
    /// Tells the status as it is now.
    using Report = std::function<void(AFNetworkReachabilityStatus)>;

    /// Begins to report: the current status soon, then every change. `report` may be called on any thread, also before
    /// `start` returns; a report that repeats the status is harmless. Never called twice without `stop` in between.
    /// Main thread.
    virtual void start(Report report) = 0;
    /// Ends the reports. One that is under way on another thread may still come and is ignored. Main thread.
    virtual void stop() = 0;

    /// What the built-in monitor makes of a machine without any other network.
    enum class Loopback {
        DoesNotCount,
        /// The machine's own addresses are enough, for a service that runs on this machine.
        Counts,
    };
    /// The built-in monitor, which listens to the kernel's notices of links and addresses. The network counts as
    /// reachable while an interface is up and running with an address that is good for more than its own link; mobile
    /// modems (wwan, ppp, rmnet) give status 1, everything else 2.
    static Ref<NetworkMonitor> systemMonitor(Loopback loopback = Loopback::DoesNotCount);
};

/// A monitor whose status is set by hand, for scripts and tests. Main thread.
class FLAREBOX_EXPORT ManualNetworkMonitor : public NetworkMonitor {
    FLAREBOX_CLASS(ManualNetworkMonitor)
public:
    /// Reports the status as soon as it is started.
    explicit ManualNetworkMonitor(AFNetworkReachabilityStatus status = AFNetworkReachabilityStatusUnknown)
        : status_(status) {}

    /// As it was set last.
    AFNetworkReachabilityStatus status() const { return status_; }
    /// Reports it at once while started.
    void setStatus(AFNetworkReachabilityStatus status);

    void start(Report report) override;
    void stop() override;

private:
    AFNetworkReachabilityStatus status_;
    Report report_;
};

}  // namespace flarebox
