#pragma once

#include <httplib.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_set>

namespace flarebox::examples {

/// An HTTP server that keeps hold of its connections: it stops at once even while clients keep idle connections
/// open, and a handler can watch and drop the connection it is answering on.
class Listener : private httplib::Server {
public:
    /// Answers a request of any method and path, on one of the listener's threads. Returns false to close the
    /// connection without an answer.
    using Handler = std::function<bool(const httplib::Request&, httplib::Response&)>;

    explicit Listener(Handler handler);
    ~Listener() override;

    /// Binds and begins to serve. `port` 0 means any free one. Returns false when the address cannot be had.
    bool start(const std::string& host, int port);
    /// Closes every connection and joins every thread.
    void stopAndJoin();

    int port() const { return port_; }

    /// The number of the connection being answered, counted from 1. For handlers only.
    static std::uint64_t currentConnection();
    /// Waits that long, or for ever; returns false as soon as the connection being answered is closed by the client
    /// or by stopping. For handlers only.
    static bool connectionLastsFor(std::chrono::milliseconds time);
    static void waitForEndOfConnection();

private:
    bool process_and_close_socket(socket_t descriptor) override;
    void answerRequests(socket_t descriptor);
    void answer(const httplib::Request& request, httplib::Response& response);
    bool enter(socket_t descriptor);
    void leave(socket_t descriptor);

    Handler handler_;
    std::thread acceptor_;
    int port_ = 0;
    std::atomic<std::uint64_t> connections_{0};

    std::mutex mutex_;
    bool stopping_ = false;
    std::unordered_set<socket_t> open_;
};

}  // namespace flarebox::examples
