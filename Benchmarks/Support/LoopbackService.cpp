#include <Benchmarks/Support/LoopbackService.h>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <pthread.h>
#include <sched.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace flarebox::benchmarks {

namespace {

/// The clients measured here write the field in this way alone.
std::size_t announcedLength(std::string_view head) {
    constexpr std::string_view name = "\r\nContent-Length: ";
    const auto at = head.find(name);
    std::size_t length = 0;
    if (at != head.npos) std::from_chars(head.data() + at + name.size(), head.data() + head.size(), length);
    return length;
}

cpu_set_t everyProcessor() {
    cpu_set_t set;
    CPU_ZERO(&set);
    sched_getaffinity(0, sizeof set, &set);
    return set;
}

/// The set without its last processor, or that one alone.
cpu_set_t part(const cpu_set_t& all, bool last) {
    cpu_set_t part;
    CPU_ZERO(&part);
    for (int number = 0, left = CPU_COUNT(&all); left > 0; ++number) {
        if (!CPU_ISSET(number, &all)) continue;
        --left;
        if ((left == 0) == last) CPU_SET(number, &part);
    }
    return part;
}

[[noreturn]] void giveUp(const char* what) {
    std::perror(what);
    std::exit(1);
}

}  // namespace

std::string httpAnswer(std::string_view type, std::string_view body) {
    std::string text = "HTTP/1.1 200 OK\r\nContent-Type: ";
    text.append(type).append("\r\nContent-Length: ").append(std::to_string(body.size())).append("\r\n\r\n");
    return text.append(body);
}

LoopbackService::LoopbackService(Answers answers)
    : wakeUp_(eventfd(0, EFD_CLOEXEC)), events_(epoll_create1(EPOLL_CLOEXEC)), answers_(std::move(answers)) {
    listen();
    watch(listener_, EPOLLIN, EPOLL_CTL_ADD);
    watch(wakeUp_, EPOLLIN, EPOLL_CTL_ADD);
    thread_ = std::thread([this] { run(); });
}

LoopbackService::~LoopbackService() {
    eventfd_write(wakeUp_, 1);
    thread_.join();
    for (const auto& [socket, connection] : connections_) close(socket);
    for (const int descriptor : {listener_, wakeUp_, events_}) close(descriptor);
}

void LoopbackService::setHasOwnProcessor(bool own) {
    static const cpu_set_t all = everyProcessor();
    if (CPU_COUNT(&all) < 2) return;
    const cpu_set_t ours = own ? part(all, true) : all, others = own ? part(all, false) : all;
    pthread_setaffinity_np(thread_.native_handle(), sizeof ours, &ours);
    pthread_setaffinity_np(pthread_self(), sizeof others, &others);
}

void LoopbackService::listen() {
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(listener_, reinterpret_cast<const sockaddr*>(&address), length) != 0) giveUp("bind");
    if (::listen(listener_, 256) != 0) giveUp("listen");
    if (getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0) giveUp("getsockname");
    port_ = ntohs(address.sin_port);
}

void LoopbackService::watch(int socket, std::uint32_t events, int operation) const {
    epoll_event event = {};
    event.events = events;
    event.data.fd = socket;
    epoll_ctl(events_, operation, socket, &event);
}

void LoopbackService::run() {
    std::array<epoll_event, 64> events;
    while (true) {
        const int count = epoll_wait(events_, events.data(), static_cast<int>(events.size()), -1);
        for (int index = 0; index < count; ++index) {
            if (events[index].data.fd == wakeUp_) return;
            serve(events[index]);
        }
    }
}

void LoopbackService::serve(const epoll_event& event) {
    const int socket = event.data.fd;
    if (socket == listener_) return acceptWaiting();
    if (event.events & EPOLLOUT) return write(socket);
    read(socket);
}

void LoopbackService::acceptWaiting() {
    for (int socket; (socket = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC)) >= 0;) {
        const int on = 1;
        setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        watch(socket, EPOLLIN, EPOLL_CTL_ADD);
        connections_[socket] = {};
        ++accepted_;
    }
}

void LoopbackService::read(int socket) {
    std::array<char, 16384> bytes;
    const ssize_t count = recv(socket, bytes.data(), bytes.size(), 0);
    if (count <= 0) return drop(socket);
    Connection& connection = connections_[socket];
    connection.received.append(bytes.data(), static_cast<std::size_t>(count));
    if (connection.unsent.empty() && answerNext(connection)) write(socket);
}

bool LoopbackService::answerNext(Connection& connection) const {
    const std::string_view received = connection.received;
    const auto headEnd = received.find("\r\n\r\n");
    if (headEnd == received.npos) return false;
    const std::size_t length = headEnd + 4 + announcedLength(received.substr(0, headEnd + 2));
    if (received.size() < length) return false;
    const auto method = received.substr(0, received.find(' '));
    const auto rest = received.substr(std::min(method.size() + 1, headEnd));
    connection.unsent = answers_(method, rest.substr(0, rest.find(' ')));
    connection.received.erase(0, length);
    return true;
}

void LoopbackService::write(int socket) {
    Connection& connection = connections_[socket];
    do {
        const ssize_t count = send(socket, connection.unsent.data(), connection.unsent.size(), MSG_NOSIGNAL);
        if (count < 0) return waitToWrite(socket, connection, true);
        connection.unsent.remove_prefix(static_cast<std::size_t>(count));
    } while (!connection.unsent.empty() || answerNext(connection));
    waitToWrite(socket, connection, false);
}

void LoopbackService::waitToWrite(int socket, Connection& connection, bool waits) const {
    if (connection.waitsToWrite == waits) return;
    connection.waitsToWrite = waits;
    watch(socket, waits ? EPOLLIN | EPOLLOUT : EPOLLIN, EPOLL_CTL_MOD);
}

void LoopbackService::drop(int socket) {
    close(socket);
    connections_.erase(socket);
}

}  // namespace flarebox::benchmarks
