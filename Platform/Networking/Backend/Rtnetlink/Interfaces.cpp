#include <Networking/Backend/Rtnetlink/Interfaces.h>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string_view>

namespace flarebox {

namespace {

bool isInternetAddress(const sockaddr* address) {
    return address && (address->sa_family == AF_INET || address->sa_family == AF_INET6);
}

bool isLinkLocalAddress(const sockaddr* address) {
    if (address->sa_family == AF_INET) {
        sockaddr_in internet;
        std::memcpy(&internet, address, sizeof internet);
        return ntohl(internet.sin_addr.s_addr) >> 16 == 0xA9FE;  // 169.254.0.0/16
    }
    sockaddr_in6 internet;
    std::memcpy(&internet, address, sizeof internet);
    return IN6_IS_ADDR_LINKLOCAL(&internet.sin6_addr);
}

bool isMobileModem(std::string_view name) {
    constexpr std::array<std::string_view, 3> prefixes = {"wwan", "ppp", "rmnet"};
    return std::any_of(prefixes.begin(), prefixes.end(), [&](auto prefix) { return name.starts_with(prefix); });
}

}  // namespace

std::optional<std::vector<InterfaceAddress>> interfaceAddresses() {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) return std::nullopt;
    std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> owner(list, freeifaddrs);
    std::vector<InterfaceAddress> addresses;
    for (const ifaddrs* entry = list; entry; entry = entry->ifa_next) {
        if (!isInternetAddress(entry->ifa_addr)) continue;
        addresses.push_back({entry->ifa_name, (entry->ifa_flags & IFF_UP) && (entry->ifa_flags & IFF_RUNNING),
                             (entry->ifa_flags & IFF_LOOPBACK) != 0, isLinkLocalAddress(entry->ifa_addr)});
    }
    return addresses;
}

AFNetworkReachabilityStatus reachabilityOf(std::span<const InterfaceAddress> addresses,
                                           NetworkMonitor::Loopback loopback) {
    auto status = AFNetworkReachabilityStatusNotReachable;
    for (auto& address : addresses) {
        if (!address.isUpAndRunning || address.isLinkLocal) continue;
        if (address.isLoopback && loopback == NetworkMonitor::Loopback::DoesNotCount) continue;
        status = std::max(status, isMobileModem(address.interfaceName) ? AFNetworkReachabilityStatusReachableViaWWAN
                                                                       : AFNetworkReachabilityStatusReachableViaWiFi);
    }
    return status;
}

}  // namespace flarebox
