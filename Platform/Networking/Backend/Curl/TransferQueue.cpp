#include <Networking/Backend/Curl/TransferQueue.h>

#include <algorithm>
#include <utility>

namespace flarebox {

namespace {

/// What HTTP/2 servers usually allow on one connection.
constexpr int multiplexedTransfers = 100;

std::string serverOf(const std::string& url) {
    auto host = url.find("://");
    return host == std::string::npos ? url : url.substr(0, url.find_first_of("/?#", host + 3));
}

}  // namespace

void TransferQueue::add(Entry entry) {
    servers_[serverOf(entry.request.url)].waiting.push_back(std::move(entry));
}

std::optional<TransferQueue::Entry> TransferQueue::takeNext() {
    for (auto& [name, server] : servers_) {
        if (server.waiting.empty() || server.running >= server.limit) continue;
        Entry entry = std::move(server.waiting.front());
        server.waiting.pop_front();
        ++server.running;
        return entry;
    }
    return std::nullopt;
}

void TransferQueue::ended(const std::string& url, bool multiplexes) {
    auto found = servers_.find(serverOf(url));
    if (found == servers_.end()) return;
    Server& server = found->second;
    --server.running;
    if (multiplexes) server.limit = multiplexedTransfers;
    if (server.running == 0 && server.waiting.empty() && server.limit == Transport::connectionsPerHost) {
        servers_.erase(found);
    }
}

void TransferQueue::remove(Transport::Identifier identifier) {
    for (auto& [name, server] : servers_) {
        std::erase_if(server.waiting, [&](const Entry& entry) { return entry.identifier == identifier; });
    }
}

}  // namespace flarebox
