#pragma once

#include <Networking/Transport.h>

#include <deque>
#include <map>
#include <optional>
#include <string>

namespace flarebox {

/// The transfers that wait for their turn, so that no server is opened more connections to than it is polite to, and a
/// server that hangs holds up nobody but those who asked for it. (The library's own limit wakes waiting transfers
/// without looking at whose connection has become free, and may leave all of them asleep.)
class TransferQueue {
public:
    struct Entry {
        Transport::Identifier identifier;
        TransferRequest request;
        Transport::Completion completion;
    };

    void add(Entry entry);
    /// A transfer that may start now; its server counts it until `ended`.
    std::optional<Entry> takeNext();
    /// `url` is the address of the request; `multiplexes` tells that its server takes many transfers on one connection.
    void ended(const std::string& url, bool multiplexes);
    /// Takes a waiting transfer out, if there is one of that number.
    void remove(Transport::Identifier identifier);

private:
    struct Server {
        int running = 0;
        int limit = Transport::connectionsPerHost;
        std::deque<Entry> waiting;
    };
    /// By scheme, host and port.
    std::map<std::string, Server> servers_;
};

}  // namespace flarebox
