#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace flarebox::examples {

/// How the service departs from its normal answer on one path. Whatever is left out stays normal.
struct Behaviour {
    enum class Ending {
        Answer,  ///< the whole answer
        Cut,     ///< the head and half of the body, then the connection is closed
        Hang,    ///< nothing, until the client gives up or the service stops
    };

    std::optional<int> status = {};
    std::optional<std::string> body = {};
    std::optional<std::string> contentType = {};
    /// Added to the answer's own, "Location" of a redirect for example.
    std::vector<std::pair<std::string, std::string>> headers = {};
    /// Time between the request and the answer.
    std::chrono::milliseconds delay{0};
    Ending ending = Ending::Answer;
    /// The number of requests to treat so; 0 means all of them.
    int times = 0;
};

}  // namespace flarebox::examples
