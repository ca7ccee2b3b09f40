#include <Networking/Backend/Rtnetlink/Interfaces.h>
#include <Networking/Transport.h>

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <optional>
#include <utility>

namespace flarebox {

namespace {

/// A socket on which the kernel announces every change of links and addresses; -1 when it refuses.
int openNoticeSocket() {
    int socket = ::socket(AF_NETLINK, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, NETLINK_ROUTE);
    if (socket < 0) return -1;
    sockaddr_nl address = {};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    if (bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return socket;
    close(socket);
    return -1;
}

class NoticeWatch : public Transport::Watch {
public:
    NoticeWatch(NetworkMonitor::Report report, NetworkMonitor::Loopback loopback)
        : socket_(openNoticeSocket()), report_(std::move(report)), loopback_(loopback) {}
    ~NoticeWatch() override {
        if (socket_ >= 0) close(socket_);
    }

    int descriptor() const override { return socket_; }

    // What the notices say does not matter, nor whether some were lost: the interfaces are looked at afresh.
    void readable() override {
        std::array<char, 8192> notices;
        while (socket_ >= 0 && recv(socket_, notices.data(), notices.size(), 0) >= 0) {
        }
        const auto addresses = interfaceAddresses();
        // Where the machine cannot be asked, a request will tell.
        const auto status =
            addresses ? reachabilityOf(*addresses, loopback_) : AFNetworkReachabilityStatusReachableViaWiFi;
        if (std::exchange(reported_, status) != status) report_(status);
    }

private:
    int socket_;
    NetworkMonitor::Report report_;
    NetworkMonitor::Loopback loopback_;
    std::optional<AFNetworkReachabilityStatus> reported_;
};

class RtnetlinkMonitor : public NetworkMonitor {
    FLAREBOX_CLASS(RtnetlinkMonitor)
public:
    explicit RtnetlinkMonitor(Loopback loopback) : loopback_(loopback) {}
    ~RtnetlinkMonitor() override { stop(); }

    void start(Report report) override {
        watch_ = Transport::shared().watch(std::make_unique<NoticeWatch>(std::move(report), loopback_));
    }

    void stop() override {
        if (watch_) Transport::shared().unwatch(*std::exchange(watch_, std::nullopt));
    }

private:
    Loopback loopback_;
    std::optional<Transport::Identifier> watch_;
};

const ClassInfo& RtnetlinkMonitor::staticClass() {
    static const ClassInfo info("RtnetlinkMonitor", &NSObject::staticClass(), nullptr);
    return info;
}

}  // namespace

Ref<NetworkMonitor> NetworkMonitor::systemMonitor(Loopback loopback) {
    return make<RtnetlinkMonitor>(loopback);
}

}  // namespace flarebox
