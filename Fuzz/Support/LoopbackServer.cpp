#include <Fuzz/Support/LoopbackServer.h>

#include <Fuzz/Support/FuzzTarget.h>
#include <Tests/Support/TemporaryDirectory.h>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <vector>

namespace flarebox::fuzz {
namespace {

struct Connection {
    int descriptor;
    std::string received;
};

/// Where the request's body ends; none before all of it is there.
bool isWhole(const std::string& received) {
    const std::size_t end = received.find("\r\n\r\n");
    if (end == std::string::npos) return false;
    std::string head = received.substr(0, end);
    for (char& character : head) character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    const std::size_t length = head.find("\r\ncontent-length:");
    if (length == std::string::npos) return true;
    return received.size() >= end + 4 + std::strtoul(head.c_str() + length + 17, nullptr, 10);
}

void send(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

/// Nothing outside the temporary directory and the loopback interface is to be touched.
void confine(const std::string& folder, const std::string& url) {
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        setenv(name, folder.c_str(), 1);
    for (const char* name : {"http_proxy", "https_proxy", "all_proxy"}) setenv(name, url.c_str(), 1);
    unsetenv("no_proxy");
}

}  // namespace

LoopbackServer& LoopbackServer::shared() {
    static const testing::TemporaryDirectory folder;
    static LoopbackServer server;
    static const bool isConfined = (confine(folder.path(), server.url()), true);
    static_cast<void>(isConfined);
    return server;
}

LoopbackServer::LoopbackServer() : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    const bool listens = bind(listener_, generic, length) == 0 && listen(listener_, 64) == 0;
    check(listens && getsockname(listener_, generic, &length) == 0, "the loopback interface can be used");
    port_ = ntohs(address.sin_port);
    thread_ = std::jthread([this](const std::stop_token& stop) { serve(stop); });
}

LoopbackServer::~LoopbackServer() {
    thread_.request_stop();
    thread_.join();
    close(listener_);
}

void LoopbackServer::setAnswer(std::function<std::string(std::string_view)> answer) {
    const std::lock_guard lock(mutex_);
    answer_ = std::move(answer);
}

std::string LoopbackServer::answerTo(std::string_view head) {
    const std::lock_guard lock(mutex_);
    return answer_ ? answer_(head) : std::string();
}

void LoopbackServer::serve(const std::stop_token& stop) {
    std::vector<Connection> connections;
    while (!stop.stop_requested()) {
        std::vector<pollfd> waited = {{listener_, POLLIN, 0}};
        for (const Connection& connection : connections) waited.push_back({connection.descriptor, POLLIN, 0});
        if (poll(waited.data(), waited.size(), 20) <= 0) continue;
        for (std::size_t i = connections.size(); i > 0; --i) {
            if (waited[i].revents == 0) continue;
            Connection& connection = connections[i - 1];
            char buffer[16384];
            const ssize_t count = recv(connection.descriptor, buffer, sizeof buffer, 0);
            if (count > 0) connection.received.append(buffer, static_cast<std::size_t>(count));
            const bool isAsked = count > 0 && isWhole(connection.received);
            if (isAsked) send(connection.descriptor, answerTo(connection.received));
            if (!isAsked && count > 0) continue;
            close(connection.descriptor);
            connections.erase(connections.begin() + static_cast<std::ptrdiff_t>(i - 1));
        }
        if (waited[0].revents == 0) continue;
        const int accepted = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (accepted >= 0) connections.push_back({accepted, {}});
    }
    for (const Connection& connection : connections) close(connection.descriptor);
}

std::string httpAnswer(int status, std::string_view body, std::string_view type) {
    return "HTTP/1.1 " + std::to_string(status) + " Answer\r\nContent-Type: " + std::string(type) +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + std::string(body);
}

}  // namespace flarebox::fuzz
