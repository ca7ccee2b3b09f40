#include <Networking/LocalAddress.h>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>

#include <memory>

namespace flarebox {

std::vector<LocalAddress> localAddresses() {
    ifaddrs* interfaces = nullptr;
    if (getifaddrs(&interfaces) != 0) return {};
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> owner(interfaces, freeifaddrs);
    std::vector<LocalAddress> found;
    for (const ifaddrs* entry = interfaces; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || !entry->ifa_name || entry->ifa_addr->sa_family != AF_INET) continue;
        char text[INET_ADDRSTRLEN];
        const auto* address = reinterpret_cast<const sockaddr_in*>(entry->ifa_addr);
        if (inet_ntop(AF_INET, &address->sin_addr, text, sizeof text)) found.push_back({entry->ifa_name, text});
    }
    return found;
}

}  // namespace flarebox
