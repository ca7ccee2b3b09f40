// The system's headers need each other in this order.
// clang-format off
#include <winsock2.h>
#include <ws2tcpip.h>
#include <iphlpapi.h>
// clang-format on

#include <Foundation/Backend/Windows/WideText.h>
#include <Networking/LocalAddress.h>

namespace flarebox {

std::vector<LocalAddress> localAddresses() {
    constexpr ULONG flags = GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER;
    ULONG size = 16 * 1024;
    std::vector<IP_ADAPTER_ADDRESSES> list;
    ULONG answer = ERROR_BUFFER_OVERFLOW;
    for (int attempt = 0; attempt < 3 && answer == ERROR_BUFFER_OVERFLOW; ++attempt) {
        list.resize(size / sizeof(IP_ADAPTER_ADDRESSES) + 1);
        answer = GetAdaptersAddresses(AF_INET, flags, nullptr, list.data(), &size);
    }
    std::vector<LocalAddress> found;
    if (answer != NO_ERROR) return found;
    for (const IP_ADAPTER_ADDRESSES* adapter = list.data(); adapter; adapter = adapter->Next) {
        for (const auto* entry = adapter->FirstUnicastAddress; entry; entry = entry->Next) {
            wchar_t text[INET_ADDRSTRLEN];
            const auto* address = reinterpret_cast<const sockaddr_in*>(entry->Address.lpSockaddr);
            if (!InetNtopW(AF_INET, &address->sin_addr, text, INET_ADDRSTRLEN)) continue;
            found.push_back({windows::narrow(adapter->FriendlyName), windows::narrow(text)});
        }
    }
    return found;
}

}  // namespace flarebox
