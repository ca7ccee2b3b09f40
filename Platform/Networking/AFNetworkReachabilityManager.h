#pragma once

#include <Foundation/Export.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSObject.h>
#include <Networking/NetworkMonitor.h>

#include <cstdint>
#include <functional>
#include <optional>

namespace flarebox {

/// Tells whether and how the network can be reached. Main thread only.
class FLAREBOX_EXPORT AFNetworkReachabilityManager : public NSObject {
    FLAREBOX_CLASS(AFNetworkReachabilityManager)
public:
    /// Gets an AFNetworkReachabilityStatus.
    using StatusBlock = std::function<void(std::int64_t status)>;

    /// The one that the kit asks.
    static AFNetworkReachabilityManager& sharedManager();

    /// Begins, or begins anew: the block is told the current status shortly after, then every change.
    void startMonitoring();
    /// Reports that are already on their way are dropped.
    void stopMonitoring();
    /// One block per manager: replaces the previous one; null for none. Called on the main queue.
    void setReachabilityStatusChangeBlock(StatusBlock block) { block_ = std::move(block); }
    /// As last reported; unknown before the first report.
    AFNetworkReachabilityStatus networkReachabilityStatus() const { return status_; }
    /// False also while the status is unknown.
    bool isReachable() const { return status_ > AFNetworkReachabilityStatusNotReachable; }

    /// Where the status comes from: null for the built-in monitor. Monitoring that is under way goes on with the new
    /// one. A shutdown ends the monitoring and forgets block and monitor.
    void setMonitor(Ref<NetworkMonitor> monitor);

private:
    void statusReported(std::uint64_t session, AFNetworkReachabilityStatus status);
    void forgetEverything();

    Ref<NetworkMonitor> monitor_;
    StatusBlock block_;
    AFNetworkReachabilityStatus status_ = AFNetworkReachabilityStatusUnknown;
    /// Last report of this monitoring session.
    std::optional<AFNetworkReachabilityStatus> reported_;
    /// Counts the starts, so that a late report of an earlier one is recognised.
    std::uint64_t session_ = 0;
    /// While the first report of the session is awaited: the process has not come to rest before it.
    std::optional<MainQueue::Activity> firstReport_;
    bool isMonitoring_ = false;
    bool endsAtShutdown_ = false;
};

}  // namespace flarebox
