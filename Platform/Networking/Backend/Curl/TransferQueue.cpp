#include <Networking/Backend/Curl/TransferQueue.h>

#include <algorithm>
#include <utility>

namespace flarebox {

namespace {

/// What HTTP/2 servers usually allow on one connection.
constexpr int multiplexedTransfers = 100;
constexpr std::size_t knownServers = 32;

std::string_view serverOf(std::string_view url) {
    auto host = url.find("://");
    return host == url.npos ? url : url.substr(0, url.find_first_of("/?#", host + 3));
}

}  // namespace

bool TransferQueue::isReadyAndIdle(std::string_view url) const {
    const auto found = servers_.find(serverOf(url));
    return found != servers_.end() && found->second.hasAnswered && found->second.running() == 0;
}

void TransferQueue::add(Entry entry) {
    const std::string_view name = serverOf(entry.request.url);
    auto found = servers_.find(name);
    if (found == servers_.end()) found = servers_.emplace(name, Server()).first;
    found->second.line(laneOf(entry.request)).waiting.push_back(std::move(entry));
}

std::optional<TransferQueue::Entry> TransferQueue::takeNext() {
    for (auto& [name, server] : servers_) {
        if (auto entry = takeNext(server.requests)) return entry;
        if (auto entry = takeNext(server.downloads)) return entry;
    }
    return std::nullopt;
}

std::optional<TransferQueue::Entry> TransferQueue::takeNext(Line& line) {
    if (line.waiting.empty() || line.running >= line.limit) return std::nullopt;
    Entry entry = std::move(line.waiting.front());
    line.waiting.pop_front();
    ++line.running;
    return entry;
}

void TransferQueue::ended(std::string_view url, Lane lane, End end) {
    auto found = servers_.find(serverOf(url));
    if (found == servers_.end()) return;
    Server& server = found->second;
    --server.line(lane).running;
    server.hasAnswered = end != End::Failed;
    if (end == End::AnsweredMultiplexed) server.requests.limit = multiplexedTransfers;
    if (server.requests.isEmpty() && server.downloads.isEmpty() && servers_.size() > knownServers)
        servers_.erase(found);
}

void TransferQueue::remove(Transport::Identifier identifier) {
    for (auto& [name, server] : servers_) {
        for (Line* line : {&server.requests, &server.downloads})
            std::erase_if(line->waiting, [&](const Entry& entry) { return entry.identifier == identifier; });
    }
}

}  // namespace flarebox
