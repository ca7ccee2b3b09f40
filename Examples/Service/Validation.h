#pragma once

#include "ReceivedRequest.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace flarebox::examples {

/// One member of a request's JSON object.
struct Field {
    enum class Kind { Text, Number, Flag, Seconds, Action };

    std::string_view key;
    Kind kind;
    bool nullable;
};

/// One operation of the service and what a right request for it looks like.
struct Operation {
    enum class Name { CreateSession, ListAssets, AcceptEngagement, SaveCoupon };

    Name name;
    std::string_view method;
    std::string_view path;
    /// The game introduces itself on some operations and must stay silent on the others.
    bool carriesGameHeaders;
    /// The members of the body's object, all of them and no others; empty for a request without body.
    std::span<const Field> fields;
};

/// The operation at a path, null when there is none.
const Operation* operationAt(std::string_view path);

/// What is wrong with the request for that operation, in words that name the culprit; none when it is right.
std::optional<std::string> complaintAbout(const ReceivedRequest& request, const Operation& operation);

/// The query's "limit", 1 or more; none when the query is anything but one such number.
std::optional<int> limitOfQuery(std::string_view query);

}  // namespace flarebox::examples
