#pragma once

#include <sys/epoll.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>

namespace flarebox::benchmarks {

/// An answer of HTTP as it goes over the wire: status 200 and the body.
std::string httpAnswer(std::string_view type, std::string_view body);

/// A service on a loopback port with next to no cost of its own: one thread, keep-alive, answers made beforehand.
class LoopbackService {
public:
    /// The whole answer to a request, which lives as long as the service. Called on the service's thread.
    using Answers = std::function<std::string_view(std::string_view method, std::string_view target)>;

    /// Serves from now on; ends the process when there is no port to be had.
    explicit LoopbackService(Answers answers);
    ~LoopbackService();
    LoopbackService(const LoopbackService&) = delete;
    LoopbackService& operator=(const LoopbackService&) = delete;

    /// Gives the service a processor of its own, where there are two, as one elsewhere has: the calling thread, and
    /// those that it starts from now on, keep off it. Who shares one with whom is then not left to chance.
    void setHasOwnProcessor(bool own);

    /// Without a slash at the end.
    std::string baseURL() const { return "http://127.0.0.1:" + std::to_string(port_); }
    /// Any thread.
    int acceptedConnections() const { return accepted_; }

private:
    struct Connection {
        std::string received;
        std::string_view unsent;
        bool waitsToWrite = false;
    };

    void listen();
    void run();
    void serve(const epoll_event& event);
    void acceptWaiting();
    void read(int socket);
    /// False when there is no whole request yet.
    bool answerNext(Connection& connection) const;
    void write(int socket);
    void waitToWrite(int socket, Connection& connection, bool waits) const;
    void watch(int socket, std::uint32_t events, int operation) const;
    void drop(int socket);

    int listener_ = -1;
    int wakeUp_ = -1;
    int events_ = -1;
    int port_ = 0;
    Answers answers_;
    std::unordered_map<int, Connection> connections_;
    std::atomic<int> accepted_ = 0;
    std::thread thread_;
};

}  // namespace flarebox::benchmarks
