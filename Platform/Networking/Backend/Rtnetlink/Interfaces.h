#pragma once

#include <Networking/NetworkMonitor.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace flarebox {

/// What the monitor needs to know of one address of an interface.
struct InterfaceAddress {
    std::string interfaceName;
    bool isUpAndRunning = false;
    bool isLoopback = false;
    /// Only good for talking to neighbours on the same link.
    bool isLinkLocal = false;
};

/// Every address of the machine, as the kernel knows them now; nothing when it cannot be asked. Takes some
/// microseconds; any thread.
std::optional<std::vector<InterfaceAddress>> interfaceAddresses();

AFNetworkReachabilityStatus reachabilityOf(std::span<const InterfaceAddress> addresses,
                                           NetworkMonitor::Loopback loopback);

}  // namespace flarebox
