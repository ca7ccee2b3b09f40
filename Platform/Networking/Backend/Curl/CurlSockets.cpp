#include <Networking/Backend/Curl/CurlSockets.h>

#include <Foundation/Clock.h>

#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace flarebox {
namespace {

/// Whether a server has said something over the connection that nobody has read; what belongs to its encryption does
/// not count.
bool hasUnreadText(curl_socket_t socket) {
    unsigned char bytes[2] = {};
    const ssize_t count = recv(socket, bytes, sizeof bytes, MSG_PEEK | MSG_DONTWAIT);
    const bool isRecord = count == 2 && bytes[0] >= 0x14 && bytes[0] <= 0x17 && bytes[1] == 3;
    return count > 0 && !isRecord;
}

}  // namespace

void CurlSockets::endTalkative() {
    for (const auto& [socket, connection] : connections_) {
        if (connection.rests && hasUnreadText(socket)) ::shutdown(socket, SHUT_RDWR);
    }
}

void CurlSockets::attachToMulti(CURLM* multi) {
    multi_ = multi;
    curl_multi_setopt(multi, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(
        multi, CURLMOPT_SOCKETFUNCTION, +[](CURL*, curl_socket_t socket, int what, void* self, void*) -> int {
            static_cast<CurlSockets*>(self)->watch(socket, what);
            return 0;
        });
    curl_multi_setopt(multi, CURLMOPT_TIMERDATA, this);
    curl_multi_setopt(
        multi, CURLMOPT_TIMERFUNCTION, +[](CURLM*, long milliseconds, void* self) -> int {
            static_cast<CurlSockets*>(self)->timer_ =
                milliseconds < 0 ? never : Clock::real().uptime() + static_cast<double>(milliseconds) / 1000;
            return 0;
        });
}

void CurlSockets::attachToEasy(CURL* easy) {
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETDATA, this);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, &CurlSockets::open);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETDATA, this);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETFUNCTION, &CurlSockets::close);
}

void CurlSockets::handle(const EventSet::Event& event) {
    const auto connection = connections_.find(event.descriptor);
    if (connection != connections_.end() && connection->second.rests) {
        // Closed by the server, as a rule; the library finds out before it uses the connection again.
        events_.forget(event.descriptor);
        connection->second.watched = 0;
        return;
    }
    int what = 0, running = 0;
    if (event.events & EPOLLIN) what |= CURL_CSELECT_IN;
    if (event.events & EPOLLOUT) what |= CURL_CSELECT_OUT;
    if (event.events & (EPOLLERR | EPOLLHUP)) what |= CURL_CSELECT_ERR;
    curl_multi_socket_action(multi_, event.descriptor, what, &running);
}

void CurlSockets::runTimer() {
    // Each call may ask for another one at once; whoever does so for ever must not hold up the rest.
    constexpr int mostCalls = 100;
    int running = 0;
    for (int call = 0; call < mostCalls && timer_ <= Clock::real().uptime(); ++call) {
        timer_ = never;
        curl_multi_socket_action(multi_, CURL_SOCKET_TIMEOUT, 0, &running);
    }
}

void CurlSockets::watch(curl_socket_t socket, int what) {
    const auto found = connections_.find(socket);
    Connection* const connection = found == connections_.end() ? nullptr : &found->second;
    if (connection) connection->rests = what == CURL_POLL_REMOVE;
    if (what == CURL_POLL_REMOVE) {
        if (!connection) events_.forget(socket);
        return;
    }
    const std::uint32_t events = (what & CURL_POLL_IN ? EPOLLIN : 0U) | (what & CURL_POLL_OUT ? EPOLLOUT : 0U);
    if (connection && connection->watched == events) return;
    if (connection) connection->watched = events;
    events_.watch(socket, events);
}

curl_socket_t CurlSockets::open(void* self, curlsocktype, curl_sockaddr* address) {
    const curl_socket_t socket = ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    if (socket != CURL_SOCKET_BAD) static_cast<CurlSockets*>(self)->connections_[socket] = {};
    return socket;
}

int CurlSockets::close(void* self, curl_socket_t socket) {
    static_cast<CurlSockets*>(self)->connections_.erase(socket);
    return ::close(socket);
}

}  // namespace flarebox
