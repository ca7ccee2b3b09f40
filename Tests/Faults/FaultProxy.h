#pragma once

#include <Tests/Faults/Fault.h>

#include <array>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace flarebox::testing {

/// What a request is for.
enum class Flow : std::uint8_t { Session, List, Event, Coupon, Picture, Model, Video };
inline constexpr std::array<const char*, 7> flowNames = {"session", "list",  "event", "coupon",
                                                         "picture", "model", "video"};

/// Stands between the kit and the service at one address for all its life, hands every request on and spoils the
/// answers that it is told to. Faults are told and counted on one thread.
class FaultProxy {
public:
    /// By what the request is for and how many of these came before it.
    using Plan = std::map<std::pair<Flow, int>, Fault>;

    FaultProxy();
    ~FaultProxy();

    /// "http://127.0.0.1:PORT".
    std::string url() const;
    int port() const { return port_; }
    void forwardTo(int servicePort) { servicePort_ = servicePort; }

    /// Listens, and counts requests from zero.
    void begin(Plan plan);
    /// Nobody listens, and every connection ends.
    void refuse() { server_.reset(); }
    void listenAgain();
    /// No more faults; what is stalled ends or goes on.
    void heal();
    void end() { server_.reset(); }

    /// Faults so far.
    int faults() const { return faults_; }
    /// Whether an answer for this path was handed on other than it came.
    bool hasSpoiled(const std::string& path) const;

private:
    /// False when nothing more can come over the connection.
    bool handOn(ScriptedServer::Connection& connection, const std::string& request);
    const Fault* faultFor(const std::string& path);

    /// Keeps the port while nobody listens.
    int reservation_;
    int port_ = 0;
    std::atomic<int> servicePort_ = 0, faults_ = 0;
    std::atomic<bool> isHealed_ = false;
    Plan plan_;
    mutable std::mutex mutex_;
    std::array<int, flowNames.size()> requests_ = {};
    std::set<std::string, std::less<>> spoiled_;
    std::unique_ptr<ScriptedServer> server_;
};

}  // namespace flarebox::testing
