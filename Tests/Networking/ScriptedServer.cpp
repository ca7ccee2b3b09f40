#include "ScriptedServer.h"

#include "ServerIdentity.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <stdexcept>

namespace flarebox::testing {

namespace {

class PlainConnection : public ScriptedServer::Connection {
public:
    explicit PlainConnection(int socket) : socket_(socket) {}

protected:
    int read(char* bytes, int length) override { return static_cast<int>(recv(socket_, bytes, length, 0)); }
    int write(const char* bytes, int length) override {
        return static_cast<int>(::send(socket_, bytes, length, MSG_NOSIGNAL));
    }

private:
    int socket_;
};

std::size_t contentLength(const std::string& head) {
    for (auto& line : headerLines(head)) {
        if (line.starts_with("Content-Length: ")) return std::stoul(line.substr(16));
    }
    return 0;
}

}  // namespace

std::optional<std::string> ScriptedServer::Connection::readRequest() {
    std::optional<std::size_t> length;
    while (true) {
        auto headEnd = unread_.find("\r\n\r\n");
        if (headEnd != std::string::npos) length = headEnd + 4 + contentLength(unread_.substr(0, headEnd + 2));
        if (length && unread_.size() >= *length) break;
        char bytes[4096];
        int count = read(bytes, sizeof bytes);
        if (count <= 0) return std::nullopt;
        unread_.append(bytes, count);
    }
    std::string request = unread_.substr(0, *length);
    unread_.erase(0, *length);
    server_->record(request);
    return request;
}

bool ScriptedServer::Connection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        int count = write(bytes.data(), static_cast<int>(bytes.size()));
        if (count <= 0) return false;
        bytes.remove_prefix(count);
    }
    return true;
}

bool ScriptedServer::Connection::answer(std::string_view status, std::string_view fields, std::string_view body) {
    std::ostringstream text;
    text << "HTTP/1.1 " << status << "\r\n" << fields << "Content-Length: " << body.size() << "\r\n\r\n" << body;
    return send(text.str());
}

void ScriptedServer::Connection::hang() {
    char bytes[4096];
    while (read(bytes, sizeof bytes) > 0) {
    }
}

bool ScriptedServer::Connection::pause(double seconds) {
    std::unique_lock lock(server_->mutex_);
    return !server_->changed_.wait_for(lock, std::chrono::duration<double>(seconds),
                                       [this] { return server_->stopping_; });
}

void ScriptedServer::Connection::finish() {
    shutdown(descriptor_, SHUT_WR);
}

void ScriptedServer::Connection::reset() {
    // Dissolving the association sends a reset at once and leaves the descriptor to its owner.
    const sockaddr nobody = {.sa_family = AF_UNSPEC, .sa_data = {}};
    ::connect(descriptor_, &nobody, sizeof nobody);
}

ScriptedServer::ScriptedServer(Script script, const ServerIdentity* identity, int port)
    : script_(std::move(script)), identity_(identity) {
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    if (port != 0) setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, generic, length) != 0 || listen(listener_, 256) != 0 ||
        getsockname(listener_, generic, &length) != 0) {
        throw std::runtime_error("no loopback port to listen on");
    }
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { acceptConnections(); });
}

ScriptedServer::~ScriptedServer() {
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
        shutdown(listener_, SHUT_RDWR);
        for (int socket : sockets_) shutdown(socket, SHUT_RDWR);
    }
    changed_.notify_all();
    acceptor_.join();
    for (auto& thread : threads_) thread.join();
    for (int socket : sockets_) close(socket);
    close(listener_);
}

std::string ScriptedServer::url(std::string_view path) const {
    return (identity_ ? "https" : "http") + std::string("://127.0.0.1:") + std::to_string(port_) + std::string(path);
}

std::vector<std::string> ScriptedServer::requests() const {
    std::lock_guard lock(mutex_);
    return requests_;
}

void ScriptedServer::record(const std::string& request) {
    std::lock_guard lock(mutex_);
    requests_.push_back(request);
}

void ScriptedServer::acceptConnections() {
    while (true) {
        int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) return;
        std::lock_guard lock(mutex_);
        sockets_.push_back(socket);
        if (stopping_) return;
        threads_.emplace_back([this, socket, number = accepted_++] { serve(socket, number); });
    }
}

void ScriptedServer::serve(int socket, int number) {
    std::unique_ptr<Connection> connection = std::make_unique<PlainConnection>(socket);
    if (identity_) connection = identity_->secure(socket);
    if (connection) {
        connection->server_ = this;
        connection->descriptor_ = socket;
        connection->number_ = number;
        script_(*connection);
    }
    connection.reset();
    // Closing is left to the end, so that no number is used twice while the server looks after it.
    shutdown(socket, SHUT_RDWR);
}

ScriptedServer::Script answering(std::function<void(ScriptedServer::Connection&, const std::string&)> answer) {
    return [answer = std::move(answer)](ScriptedServer::Connection& connection) {
        while (auto request = connection.readRequest()) answer(connection, *request);
    };
}

std::vector<std::string> headerLines(const std::string& request) {
    std::vector<std::string> lines;
    auto begin = request.find("\r\n");
    while (begin != std::string::npos) {
        auto end = request.find("\r\n", begin + 2);
        if (end == std::string::npos || end == begin + 2) break;
        lines.push_back(request.substr(begin + 2, end - begin - 2));
        begin = end;
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::string bodyOf(const std::string& request) {
    return request.substr(request.find("\r\n\r\n") + 4);
}

std::string firstLine(const std::string& request) {
    return request.substr(0, request.find("\r\n"));
}

}  // namespace flarebox::testing
