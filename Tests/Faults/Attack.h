#pragma once

#include <Tests/Networking/ScriptedServer.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace flarebox::testing {

/// An answer of any length that is sent piece by piece and never held as a whole. "SERVER" in its body stands for the
/// address of the server.
struct Flood {
    /// Whole lines.
    std::string fields = "Content-Type: application/json\r\n";
    std::string start = {};
    /// Repeated `count` times between start and end.
    std::string unit = {};
    std::size_t count = 0;
    std::string end = {};
    /// Whether its length is announced; otherwise the end of the connection tells it.
    bool isAnnounced = true;
    const char* status = "200 OK";

    void send(ScriptedServer::Connection& connection, const std::string& address) const;
};

/// One thing that a service may do to its players.
struct Attack {
    std::string name;
    /// What is answered so. Everything else is answered as usual.
    const char* path;
    /// Made when it is needed: some are long.
    std::function<Flood()> answer;
};

/// The path of the list of assets.
inline constexpr const char* listPath = "/game/common-assets/";

/// A list of one usual asset, with pictures, model and video at the paths "/icon", "/image", "/model" and "/video".
Flood usualList();

/// Every attack there is.
std::vector<Attack> allAttacks();

}  // namespace flarebox::testing
