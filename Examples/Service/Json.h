#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace flarebox::examples {

/// Writes one JSON object; its members keep the order in which they were added.
class JsonObject {
public:
    JsonObject& add(std::string_view key, std::string_view text);
    JsonObject& add(std::string_view key, const char* text) { return add(key, std::string_view(text)); }
    JsonObject& add(std::string_view key, std::int64_t number);
    JsonObject& add(std::string_view key, int number) { return add(key, std::int64_t{number}); }
    JsonObject& add(std::string_view key, bool flag);
    JsonObject& addNull(std::string_view key);
    /// Adds a member whose value is JSON text already.
    JsonObject& addJson(std::string_view key, std::string_view json);
    /// Adds the text, or null when it is empty.
    JsonObject& addOrNull(std::string_view key, std::string_view text);

    std::string text() const { return "{" + members_ + "}"; }

private:
    std::string members_;
};

/// The JSON string literal for a UTF-8 text, quotation marks included.
std::string jsonString(std::string_view text);

}  // namespace flarebox::examples
