#include "Json.h"

#include <cstdio>

namespace flarebox::examples {

std::string jsonString(std::string_view text) {
    std::string literal = "\"";
    for (char character : text) {
        if (character == '"' || character == '\\') {
            literal += '\\';
            literal += character;
        } else if (static_cast<unsigned char>(character) < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(character));
            literal += escape;
        } else {
            literal += character;
        }
    }
    return literal + '"';
}

JsonObject& JsonObject::addJson(std::string_view key, std::string_view json) {
    if (!members_.empty()) members_ += ',';
    members_ += jsonString(key);
    members_ += ':';
    members_ += json;
    return *this;
}

JsonObject& JsonObject::add(std::string_view key, std::string_view text) {
    return addJson(key, jsonString(text));
}

JsonObject& JsonObject::add(std::string_view key, std::int64_t number) {
    return addJson(key, std::to_string(number));
}

JsonObject& JsonObject::add(std::string_view key, bool flag) {
    return addJson(key, flag ? "true" : "false");
}

JsonObject& JsonObject::addNull(std::string_view key) {
    return addJson(key, "null");
}

JsonObject& JsonObject::addOrNull(std::string_view key, std::string_view text) {
    return text.empty() ? addNull(key) : add(key, text);
}

}  // namespace flarebox::examples
