#pragma once

#include <Networking/Backend/Curl/CurlHandles.h>
#include <Networking/Backend/Epoll/EventSet.h>

#include <cstdint>
#include <limits>
#include <unordered_map>

namespace flarebox {

/// Tells the library what happens on its sockets, and when time is up for it. Whoever holds the library's lock.
class CurlSockets {
public:
    /// The events outlive the sockets, the sockets outlive the library's handles.
    explicit CurlSockets(EventSet& events) : events_(events) {}
    CurlSockets(const CurlSockets&) = delete;
    CurlSockets& operator=(const CurlSockets&) = delete;

    void attachToMulti(CURLM* multi);
    /// Connections that the handle opens are known from then on until they are closed.
    void attachToEasy(CURL* easy);

    /// Ends the connections at rest on which there is something to be read: what a server has sent beyond its last
    /// answer must not be taken for the answer to the next request.
    void endTalkative();

    void handle(const EventSet::Event& event);
    /// Lets the library do what it wants to do by now though nothing has happened on a socket.
    void runTimer();
    /// Uptime of the real clock at which `runTimer` is to be called next.
    double timer() const { return timer_; }

private:
    static constexpr double never = std::numeric_limits<double>::infinity();

    struct Connection {
        /// What the events watch it for.
        std::uint32_t watched = 0;
        /// The library keeps it for another transfer. It stays watched meanwhile, for that one comes soon.
        bool rests = false;
    };

    void watch(curl_socket_t socket, int what);
    static curl_socket_t open(void* self, curlsocktype purpose, curl_sockaddr* address);
    static int close(void* self, curl_socket_t socket);

    EventSet& events_;
    CURLM* multi_ = nullptr;
    std::unordered_map<curl_socket_t, Connection> connections_;
    double timer_ = never;
};

}  // namespace flarebox
