#pragma once

#include <Networking/Transport.h>

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>

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
    /// How a transfer went: answered over HTTP/2 or later, one connection takes many at once.
    enum class End { Failed, Answered, AnsweredMultiplexed };
    /// `url` is the address of the request.
    void ended(std::string_view url, End end);
    /// Whether the server of that address answered the transfer to it that ended last.
    bool hasAnswered(std::string_view url) const;
    /// Takes a waiting transfer out, if there is one of that number.
    void remove(Transport::Identifier identifier);

private:
    struct Server {
        int running = 0;
        bool hasAnswered = false;
        int limit = Transport::connectionsPerHost;
        std::deque<Entry> waiting;
    };
    /// By scheme, host and port.
    std::map<std::string, Server, std::less<>> servers_;
};

}  // namespace flarebox
