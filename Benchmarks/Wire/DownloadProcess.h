#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace flarebox::benchmarks {

/// Downloads in a process of their own, whose peak of memory is theirs alone.
class DownloadProcess {
public:
    /// What the process is to do: which client ("flarebox" or "libcurl"), how many downloads, how many at once.
    struct Order {
        std::string client;
        std::string baseURL;
        std::string folder;
        int count = 0;
        int inFlight = 0;
    };

    /// Runs this program once more to follow the order. Returns the largest resident size it had, in bytes.
    static std::size_t peakOf(const Order& order);
    /// In that other process: the order that the arguments hold.
    static std::optional<Order> orderIn(int count, char** arguments);
    /// There, once the order was followed.
    static void reportPeak();
};

}  // namespace flarebox::benchmarks
