#include <Tests/Faults/FaultProxy.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace flarebox::testing {
namespace {

Flow flowOf(std::string_view path) {
    static constexpr std::pair<std::string_view, Flow> folders[] = {
        {"/sessions/", Flow::Session}, {"/game/", Flow::List},          {"/kafka/", Flow::Event},
        {"/coupons/", Flow::Coupon},   {"/media/models/", Flow::Model}, {"/media/videos/", Flow::Video}};
    for (const auto& [folder, flow] : folders)
        if (path.starts_with(folder)) return flow;
    return Flow::Picture;
}

std::string pathOf(const std::string& request) {
    const std::size_t start = request.find(' ') + 1;
    return request.substr(start, request.find_first_of(" ?", start) - start);
}

/// Puts the field "Connection: close" in, or takes it out.
std::string closing(std::string message) {
    return message.insert(message.find("\r\n") + 2, "Connection: close\r\n");
}
std::string notClosing(std::string message) {
    static constexpr std::string_view field = "Connection: close\r\n";
    const std::size_t at = message.find(field);
    return at < message.find("\r\n\r\n") ? message.erase(at, field.size()) : message;
}

sockaddr_in loopback(int port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// What the service on that port answers; empty when it cannot be asked.
std::string answerOf(int port, const std::string& request) {
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = loopback(port);
    std::string answer;
    const std::string sent = closing(request);
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        send(descriptor, sent.data(), sent.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(sent.size())) {
        char bytes[16384];
        for (ssize_t count; (count = recv(descriptor, bytes, sizeof bytes, 0)) > 0;)
            answer.append(bytes, static_cast<std::size_t>(count));
    }
    close(descriptor);
    return notClosing(std::move(answer));
}

}  // namespace

FaultProxy::FaultProxy() : reservation_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const int on = 1;
    setsockopt(reservation_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address = loopback(0);
    socklen_t length = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(reservation_, generic, length) != 0 || getsockname(reservation_, generic, &length) != 0)
        throw std::runtime_error("no loopback port for the proxy");
    port_ = ntohs(address.sin_port);
}

FaultProxy::~FaultProxy() {
    end();
    close(reservation_);
}

std::string FaultProxy::url() const {
    return "http://127.0.0.1:" + std::to_string(port_);
}

void FaultProxy::begin(Plan plan) {
    server_.reset();
    plan_ = std::move(plan);
    requests_ = {};
    spoiled_.clear();
    isHealed_ = false;
    faults_ = 0;
    listenAgain();
}

void FaultProxy::listenAgain() {
    if (server_) return;
    server_ = std::make_unique<ScriptedServer>(
        [this](ScriptedServer::Connection& connection) {
            while (const auto request = connection.readRequest())
                if (!handOn(connection, *request)) return;
        },
        nullptr, port_);
}

void FaultProxy::heal() {
    isHealed_ = true;
    listenAgain();
}

bool FaultProxy::hasSpoiled(const std::string& path) const {
    const std::lock_guard lock(mutex_);
    return spoiled_.contains(path);
}

const Fault* FaultProxy::faultFor(const std::string& path) {
    const std::lock_guard lock(mutex_);
    const Flow flow = flowOf(path);
    const auto planned = plan_.find({flow, requests_[static_cast<std::size_t>(flow)]++});
    if (isHealed_ || planned == plan_.end()) return nullptr;
    ++faults_;
    spoiled_.insert(path);
    return &planned->second;
}

bool FaultProxy::handOn(ScriptedServer::Connection& connection, const std::string& request) {
    const std::string answer = answerOf(servicePort_, request);
    const Fault* fault = faultFor(pathOf(request));
    if (!fault) return !answer.empty() && connection.send(answer);
    return sendWithFault(connection, *fault, answer, [this] { return isHealed_.load(); });
}

}  // namespace flarebox::testing
