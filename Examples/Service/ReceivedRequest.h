#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flarebox::examples {

/// One request as it arrived.
struct ReceivedRequest {
    std::string method;
    /// The path as sent, still percent-encoded, without the query.
    std::string path;
    /// The text after the question mark as sent; empty without one.
    std::string query;
    /// Name and value as sent, sorted by name. A header with an empty value counts as absent.
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    /// Counts the service's connections from 1: equal numbers mean that a connection was reused.
    std::uint64_t connection = 0;
    /// What the service found wrong with the request, also when a `Behaviour` hid it from the client; empty when
    /// nothing is wrong.
    std::string complaint;

    /// The first header of that name, whatever its case.
    std::optional<std::string_view> header(std::string_view name) const;
};

}  // namespace flarebox::examples
