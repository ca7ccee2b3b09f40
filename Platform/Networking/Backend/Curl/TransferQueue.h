#pragma once

#include <Networking/Transport.h>

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace flarebox {

/// The transfers that wait for their turn, so that no server is opened more connections to than it is polite to, and a
/// server that hangs holds up nobody but those who asked for it. Downloads to files go beside the rest, so that large
/// ones hold up nothing that somebody is looking at. (The library's own limit wakes waiting transfers
/// without looking at whose connection has become free, and may leave all of them asleep.)
class TransferQueue {
public:
    struct Entry {
        Transport::Identifier identifier;
        TransferRequest request;
        Transport::Completion completion;
    };

    void add(Entry entry);
    enum class Lane : std::uint8_t { Requests, Downloads };
    static Lane laneOf(const TransferRequest& request) { return request.file ? Lane::Downloads : Lane::Requests; }

    /// A transfer that may start now; its server counts it until `ended`.
    std::optional<Entry> takeNext();
    /// How a transfer went: answered over HTTP/2 or later, one connection takes many at once.
    enum class End { Failed, Answered, AnsweredMultiplexed };
    /// `url` is the address of the request.
    void ended(std::string_view url, Lane lane, End end);
    /// Whether the server of that address answered the transfer to it that ended last, and has nothing to do: a
    /// transfer then finds a connection that is open.
    bool isReadyAndIdle(std::string_view url) const;
    /// Takes a waiting transfer out, if there is one of that number.
    void remove(Transport::Identifier identifier);

private:
    struct Line {
        int limit = 0;
        int running = 0;
        std::deque<Entry> waiting = {};

        bool isEmpty() const { return running == 0 && waiting.empty(); }
    };
    struct Server {
        bool hasAnswered = false;
        Line requests{Transport::connectionsPerHost}, downloads{Transport::downloadsPerHost};

        int running() const { return requests.running + downloads.running; }
        Line& line(Lane lane) { return lane == Lane::Downloads ? downloads : requests; }
    };
    static std::optional<Entry> takeNext(Line& line);

    /// By scheme, host and port.
    std::map<std::string, Server, std::less<>> servers_;
};

}  // namespace flarebox
