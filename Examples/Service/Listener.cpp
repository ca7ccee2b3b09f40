#include "Listener.h"

#include "SocketStream.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

namespace flarebox::examples {
namespace {

using namespace std::chrono_literals;

constexpr auto transferTimeout = 10s;
constexpr auto keepAliveTimeout = 60s;
constexpr int requestsPerConnection = 10000;
constexpr std::size_t largestBody = 1 << 20;
// An open connection occupies its thread.
constexpr std::size_t threadCount = 32;

struct Connection {
    socket_t descriptor = INVALID_SOCKET;
    std::uint64_t number = 0;
};

thread_local Connection current;

void allowQuickRestart(socket_t descriptor) {
    int on = 1;
    setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}

}  // namespace

Listener::Listener(Handler handler) : handler_(std::move(handler)) {
    auto answerAny = [this](const httplib::Request& request, httplib::Response& response) {
        answer(request, response);
    };
    const std::string anyPath = ".*";
    Get(anyPath, answerAny);
    Post(anyPath, answerAny);
    Put(anyPath, answerAny);
    Patch(anyPath, answerAny);
    Delete(anyPath, answerAny);
    Options(anyPath, answerAny);

    new_task_queue = [] { return std::make_unique<httplib::ThreadPool>(threadCount).release(); };
    // The default lets a second server share the port, and each would get some of the requests.
    set_socket_options(allowQuickRestart);
    set_tcp_nodelay(true);
    set_keep_alive_max_count(requestsPerConnection);
    set_keep_alive_timeout(std::chrono::seconds(keepAliveTimeout).count());
    set_payload_max_length(largestBody);
}

Listener::~Listener() {
    stopAndJoin();
}

bool Listener::start(const std::string& host, int port) {
    if (port == 0) {
        port_ = bind_to_any_port(host);
    } else {
        port_ = bind_to_port(host, port) ? port : -1;
    }
    if (port_ <= 0) return false;

    acceptor_ = std::thread([this] { listen_after_bind(); });
    // Stopping has no effect on a server that is not yet running.
    while (!is_running()) std::this_thread::sleep_for(100us);
    return true;
}

void Listener::stopAndJoin() {
    if (!acceptor_.joinable()) return;
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
        for (socket_t descriptor : open_) ::shutdown(descriptor, SHUT_RDWR);
    }
    stop();
    acceptor_.join();
}

bool Listener::process_and_close_socket(socket_t descriptor) {
    if (enter(descriptor)) answerRequests(descriptor);
    leave(descriptor);
    return true;
}

bool Listener::enter(socket_t descriptor) {
    current = {descriptor, ++connections_};
    std::lock_guard lock(mutex_);
    open_.insert(descriptor);
    return !stopping_;
}

void Listener::leave(socket_t descriptor) {
    ::shutdown(descriptor, SHUT_RDWR);
    std::lock_guard lock(mutex_);
    open_.erase(descriptor);
    ::close(descriptor);
}

void Listener::answerRequests(socket_t descriptor) {
    SocketStream stream(descriptor, transferTimeout);
    for (int left = requestsPerConnection; left > 0 && stream.waitForData(keepAliveTimeout); --left) {
        bool closed = false;
        // Left to itself, the library cuts parts out of every answer, errors too, and names them wrongly.
        auto forgetRanges = [](httplib::Request& request) { request.ranges.clear(); };
        bool answered = process_request(stream, left == 1, closed, forgetRanges);
        if (!answered || closed) return;
    }
}

void Listener::answer(const httplib::Request& request, httplib::Response& response) {
    if (!handler_(request, response)) ::shutdown(current.descriptor, SHUT_RDWR);
}

std::uint64_t Listener::currentConnection() {
    return current.number;
}

bool Listener::connectionLastsFor(std::chrono::milliseconds time) {
    return !waitForEvents(current.descriptor, POLLRDHUP, time);
}

void Listener::waitForEndOfConnection() {
    waitForEvents(current.descriptor, POLLRDHUP, -1ms);
}

}  // namespace flarebox::examples
