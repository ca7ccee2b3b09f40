#include "SocketStream.h"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace flarebox::examples {
namespace {

using NameOfEnd = int (*)(int, sockaddr*, socklen_t*);

void describeEnd(socket_t descriptor, NameOfEnd nameOfEnd, std::string& ip, int& port) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (nameOfEnd(descriptor, generic, &length) != 0) return;

    char host[NI_MAXHOST];
    char service[NI_MAXSERV];
    int flags = NI_NUMERICHOST | NI_NUMERICSERV;
    if (getnameinfo(generic, length, host, sizeof host, service, sizeof service, flags) != 0) return;
    ip = host;
    port = std::atoi(service);
}

}  // namespace

bool waitForEvents(socket_t descriptor, short events, std::chrono::milliseconds time) {
    pollfd entry{descriptor, events, 0};
    int ready = 0;
    do {
        ready = ::poll(&entry, 1, static_cast<int>(time.count()));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

bool SocketStream::waitForData(std::chrono::milliseconds time) const {
    return begin_ < end_ || waitForEvents(descriptor_, POLLIN, time);
}

bool SocketStream::is_writable() const {
    return waitForEvents(descriptor_, POLLOUT, timeout_);
}

ssize_t SocketStream::read(char* bytes, std::size_t size) {
    if (begin_ == end_) {
        if (!is_readable()) return -1;
        ssize_t received = ::recv(descriptor_, buffer_.data(), buffer_.size(), 0);
        if (received <= 0) return received;
        begin_ = 0;
        end_ = static_cast<std::size_t>(received);
    }
    std::size_t count = std::min(size, end_ - begin_);
    std::memcpy(bytes, buffer_.data() + begin_, count);
    begin_ += count;
    return static_cast<ssize_t>(count);
}

ssize_t SocketStream::write(const char* bytes, std::size_t size) {
    if (!is_writable()) return -1;
    return ::send(descriptor_, bytes, size, MSG_NOSIGNAL);
}

void SocketStream::get_remote_ip_and_port(std::string& ip, int& port) const {
    describeEnd(descriptor_, ::getpeername, ip, port);
}

void SocketStream::get_local_ip_and_port(std::string& ip, int& port) const {
    describeEnd(descriptor_, ::getsockname, ip, port);
}

}  // namespace flarebox::examples
