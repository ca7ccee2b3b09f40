#include "Validation.h"

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

namespace flarebox::examples {
namespace {

using Complaint = std::optional<std::string>;
using Kind = Field::Kind;

constexpr Field sessionFields[] = {
    {"first_name", Kind::Text, true}, {"last_name", Kind::Text, true}, {"age", Kind::Number, true},
    {"sex", Kind::Text, true},        {"state", Kind::Text, true},     {"city", Kind::Text, true},
    {"country", Kind::Text, true},    {"ip_addr", Kind::Text, true},   {"device_id", Kind::Text, true},
};

constexpr Field engagementFields[] = {
    {"action", Kind::Action, false},  {"advertiser", Kind::Text, false}, {"age", Kind::Text, true},
    {"asset", Kind::Text, false},     {"browser", Kind::Text, true},     {"browser_ver", Kind::Text, true},
    {"campaign", Kind::Text, true},   {"country", Kind::Text, true},     {"desktop", Kind::Flag, false},
    {"developer", Kind::Text, false}, {"device_id", Kind::Text, true},   {"duration", Kind::Seconds, false},
    {"game", Kind::Text, false},      {"generic", Kind::Flag, false},    {"ip_addr", Kind::Text, true},
    {"mobile", Kind::Flag, false},    {"os", Kind::Text, true},          {"os_ver", Kind::Text, true},
    {"session", Kind::Text, false},   {"sex", Kind::Text, true},         {"spot", Kind::Text, true},
    {"version", Kind::Text, false},
};

constexpr Field couponFields[] = {
    {"session", Kind::Text, true},
    {"asset", Kind::Number, false},
};

constexpr Operation operations[] = {
    {Operation::Name::CreateSession, "POST", "/sessions/", true, sessionFields},
    {Operation::Name::ListAssets, "GET", "/game/common-assets/", true, {}},
    {Operation::Name::AcceptEngagement, "POST", "/kafka/engagement/", false, engagementFields},
    {Operation::Name::SaveCoupon, "POST", "/coupons/", false, couponFields},
};

constexpr std::string_view actions[] = {"2d", "3d", "video", "flarebox", "coupon"};
constexpr std::string_view gameHeaders[] = {"Game-UID", "Game-Version"};

std::string quoted(std::string_view name) {
    return "'" + std::string(name) + "'";
}

template <class Range>
bool contains(const Range& range, std::string_view text) {
    return std::find(std::begin(range), std::end(range), text) != std::end(range);
}

bool isDecimal(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

std::string_view expectation(Kind kind) {
    switch (kind) {
        case Kind::Text:
            return "a text";
        case Kind::Number:
            return "a number";
        case Kind::Flag:
            return "the text \"true\" or \"false\"";
        case Kind::Seconds:
            return "a text of decimal digits";
        case Kind::Action:
            return "the name of an action";
    }
    return "";
}

bool fits(const simdjson::dom::element& value, const Field& field) {
    if (value.is_null()) return field.nullable;
    if (field.kind == Kind::Number) return value.is_number();
    if (!value.is_string()) return false;

    std::string_view text = value.get_string().value_unsafe();
    switch (field.kind) {
        case Kind::Flag:
            return text == "true" || text == "false";
        case Kind::Seconds:
            return isDecimal(text);
        case Kind::Action:
            return contains(actions, text);
        default:
            return field.nullable || !text.empty();
    }
}

Complaint complaintAboutMember(std::string_view key, const simdjson::dom::element& value,
                               std::span<const Field> fields) {
    auto field = std::find_if(fields.begin(), fields.end(), [&](const Field& each) { return each.key == key; });
    if (field == fields.end()) return "surplus key " + quoted(key);
    if (fits(value, *field)) return std::nullopt;
    return "value of " + quoted(key) + " is not " + std::string(expectation(field->kind)) +
           (field->nullable ? " or null" : "");
}

// Threads of a service may still read requests while the process ends. Used before anything else the parser's tables
// outlive them.
[[maybe_unused]] const bool hasParser = [] {
    simdjson::dom::parser parser;
    return parser.parse("[]", 2).error() == simdjson::SUCCESS;
}();

Complaint complaintAboutBody(const std::string& body, std::span<const Field> fields) {
    simdjson::dom::parser parser;
    simdjson::dom::element root;
    if (auto error = parser.parse(body).get(root)) return std::string("body is not JSON: ") + error_message(error);
    simdjson::dom::object object;
    if (root.get(object)) return "body is not a JSON object";

    std::vector<std::string_view> seen;
    for (auto [key, value] : object) {
        if (contains(seen, key)) return "key " + quoted(key) + " appears twice";
        if (auto complaint = complaintAboutMember(key, value, fields)) return complaint;
        seen.push_back(key);
    }
    for (const Field& field : fields) {
        if (!contains(seen, field.key)) return "missing key " + quoted(field.key);
    }
    return std::nullopt;
}

bool isJsonType(std::string_view contentType) {
    std::string_view type = contentType.substr(0, contentType.find(';'));
    while (!type.empty() && type.back() == ' ') type.remove_suffix(1);
    return type == "application/json";
}

Complaint complaintAboutHeaders(const ReceivedRequest& request, const Operation& operation) {
    if (request.header("Accept") != "application/json") return "header 'Accept' is not application/json";
    for (std::string_view name : gameHeaders) {
        auto value = request.header(name);
        if (operation.carriesGameHeaders && (!value || value->empty())) return "missing header " + quoted(name);
        if (!operation.carriesGameHeaders && value) return "surplus header " + quoted(name);
    }
    if (operation.method == "POST" && !isJsonType(request.header("Content-Type").value_or(""))) {
        return "header 'Content-Type' is not application/json";
    }
    return std::nullopt;
}

Complaint complaintAboutQuery(std::string_view query, const Operation& operation) {
    if (operation.name == Operation::Name::ListAssets) {
        if (limitOfQuery(query)) return std::nullopt;
        return "query " + quoted(query) + " is not limit=N with a positive integer N";
    }
    if (!query.empty()) return "surplus query " + quoted(query);
    return std::nullopt;
}

}  // namespace

const Operation* operationAt(std::string_view path) {
    for (const Operation& operation : operations) {
        if (operation.path == path) return &operation;
    }
    return nullptr;
}

std::optional<int> limitOfQuery(std::string_view query) {
    constexpr std::string_view prefix = "limit=";
    if (!query.starts_with(prefix)) return std::nullopt;
    std::string_view digits = query.substr(prefix.size());
    int limit = 0;
    auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), limit);
    if (!isDecimal(digits) || error != std::errc() || limit < 1) return std::nullopt;
    return limit;
}

Complaint complaintAbout(const ReceivedRequest& request, const Operation& operation) {
    if (auto complaint = complaintAboutHeaders(request, operation)) return complaint;
    if (auto complaint = complaintAboutQuery(request.query, operation)) return complaint;
    if (!operation.fields.empty()) return complaintAboutBody(request.body, operation.fields);
    if (!request.body.empty()) return "surplus body";
    return std::nullopt;
}

}  // namespace flarebox::examples
