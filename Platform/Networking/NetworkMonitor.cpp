#include <Networking/NetworkMonitor.h>

#include <utility>

namespace flarebox {

const ClassInfo& ManualNetworkMonitor::staticClass() {
    static const ClassInfo info("ManualNetworkMonitor", &NSObject::staticClass(), nullptr);
    return info;
}

void ManualNetworkMonitor::setStatus(AFNetworkReachabilityStatus status) {
    status_ = status;
    if (report_) report_(status);
}

void ManualNetworkMonitor::start(Report report) {
    report_ = std::move(report);
    report_(status_);
}

void ManualNetworkMonitor::stop() {
    report_ = nullptr;
}

}  // namespace flarebox
