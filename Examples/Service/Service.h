#pragma once

#include <Examples/Service/Behaviour.h>
#include <Examples/Service/ReceivedRequest.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox::examples {

/// A local service with invented products: the four operations of the protocol, and the pictures that its assets
/// point to. It checks every request and answers 400 with `{"error": reason}` when one is wrong.
///
/// All operations may be called on any thread, but `start` and `stop` on one thread at a time.
class Service {
public:
    struct Options {
        std::string host = "127.0.0.1";
        /// 0 means any free port.
        int port = 0;
        /// What the links in its answers begin with, where clients reach it by another address; empty for its own.
        std::string publicURL = {};
    };

    Service();
    ~Service();  ///< Stops.
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /// Binds and serves on threads of its own; a running service is stopped first. Returns false when the address
    /// cannot be had.
    [[nodiscard]] bool start(const Options& options);
    [[nodiscard]] bool start() { return start(Options{}); }
    /// Cuts every connection and joins every thread, within milliseconds whatever is going on. Recorded requests stay.
    void stop();

    /// 0 while stopped.
    int port() const;
    /// "http://127.0.0.1:8080", without a slash at the end; empty while stopped.
    std::string baseURL() const;

    /// The latest 10,000 requests in order of arrival, those for pictures included.
    std::vector<ReceivedRequest> requests() const;
    std::vector<ReceivedRequest> requests(std::string_view path) const;
    /// Waits until there are `count` requests for the path; false when the time is over.
    bool waitForRequests(std::string_view path, std::size_t count, std::chrono::milliseconds time) const;
    void forgetRequests();

    /// Departs from the normal answer on this path from the next request on.
    void behave(std::string_view path, Behaviour behaviour);
    void behaveNormally();

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace flarebox::examples
