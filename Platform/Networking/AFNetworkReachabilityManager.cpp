#include <Networking/AFNetworkReachabilityManager.h>

#include <Foundation/MainQueue.h>
#include <Foundation/Shutdown.h>

#include <utility>

namespace flarebox {

const ClassInfo& AFNetworkReachabilityManager::staticClass() {
    static const ClassInfo info("AFNetworkReachabilityManager", &NSObject::staticClass(), nullptr);
    return info;
}

AFNetworkReachabilityManager& AFNetworkReachabilityManager::sharedManager() {
    static AFNetworkReachabilityManager* manager = make<AFNetworkReachabilityManager>().leak();
    return *manager;
}

void AFNetworkReachabilityManager::startMonitoring() {
    stopMonitoring();
    if (!monitor_) monitor_ = NetworkMonitor::systemMonitor();
    if (!std::exchange(endsAtShutdown_, true)) Shutdown::addHandler([this] { forgetEverything(); });
    isMonitoring_ = true;
    reported_.reset();
    firstReport_.emplace();
    monitor_->start([this, session = session_](AFNetworkReachabilityStatus status) {
        MainQueue::shared().async([this, session, status] { statusReported(session, status); });
    });
}

void AFNetworkReachabilityManager::stopMonitoring() {
    if (!std::exchange(isMonitoring_, false)) return;
    ++session_;
    firstReport_.reset();
    monitor_->stop();
}

void AFNetworkReachabilityManager::setMonitor(Ref<NetworkMonitor> monitor) {
    if (!requireMainThread("AFNetworkReachabilityManager::setMonitor")) return;
    const bool wasMonitoring = isMonitoring_;
    stopMonitoring();
    monitor_ = std::move(monitor);
    if (wasMonitoring) startMonitoring();
}

void AFNetworkReachabilityManager::statusReported(std::uint64_t session, AFNetworkReachabilityStatus status) {
    if (session != session_ || !isMonitoring_ || reported_ == status) return;
    firstReport_.reset();
    reported_ = status;
    status_ = status;
    // The block may install another one.
    if (auto block = block_) block(status);
}

void AFNetworkReachabilityManager::forgetEverything() {
    stopMonitoring();
    endsAtShutdown_ = false;
    status_ = AFNetworkReachabilityStatusUnknown;
    monitor_ = nullptr;
    std::exchange(block_, nullptr);
}

}  // namespace flarebox
