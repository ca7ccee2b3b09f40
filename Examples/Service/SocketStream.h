#pragma once

#include <httplib.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <string>

namespace flarebox::examples {

/// A connected socket as the HTTP server reads and writes it. Borrows the descriptor.
class SocketStream : public httplib::Stream {
public:
    SocketStream(socket_t descriptor, std::chrono::milliseconds timeout) : descriptor_(descriptor), timeout_(timeout) {}

    /// Waits until the client has sent something; false when the time is over or the client has gone.
    bool waitForData(std::chrono::milliseconds time) const;

    bool is_readable() const override { return waitForData(timeout_); }
    bool is_writable() const override;
    ssize_t read(char* bytes, std::size_t size) override;
    ssize_t write(const char* bytes, std::size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return descriptor_; }

private:
    socket_t descriptor_;
    std::chrono::milliseconds timeout_;
    // The server reads a request's head byte by byte.
    std::array<char, 4096> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
};

/// Waits until one of the poll events happens on the descriptor; false when the time is over. Negative: for ever.
bool waitForEvents(socket_t descriptor, short events, std::chrono::milliseconds time);

}  // namespace flarebox::examples
