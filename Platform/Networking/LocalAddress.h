#pragma once

#include <string>
#include <vector>

namespace flarebox {

/// An IPv4 address of this machine.
struct LocalAddress {
    /// The system's name of the network interface, "eth0".
    std::string interfaceName;
    /// In dotted notation, "192.168.0.7".
    std::string address;
};

/// All of them, in the system's order; empty when the system does not say. Any thread.
std::vector<LocalAddress> localAddresses();

}  // namespace flarebox
