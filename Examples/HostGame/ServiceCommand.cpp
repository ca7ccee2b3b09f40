#include "ServiceCommand.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

namespace flarebox::hostgame {
namespace {

using examples::Behaviour;

std::optional<std::string> readBody(const std::filesystem::path& path, const std::string& address) {
    constexpr std::string_view placeholder = "{service}";
    std::ifstream file(path, std::ios::binary);
    std::stringstream content;
    content << file.rdbuf();
    if (!file) return std::nullopt;
    std::string text = content.str();
    for (std::size_t at = text.find(placeholder); at != text.npos; at = text.find(placeholder, at + address.size())) {
        text.replace(at, placeholder.size(), address);
    }
    return text;
}

/// What one word, and the value behind it where it wants one, asks for; none for other words.
std::optional<Behaviour> parseBehaviour(const std::string& word, const std::string* value) {
    if (!value && word == "normal") return Behaviour{};
    if (!value && word == "cut") return Behaviour{.ending = Behaviour::Ending::Cut};
    if (!value && word == "hang") return Behaviour{.ending = Behaviour::Ending::Hang};
    if (!value) return std::nullopt;
    if (word == "status") {
        const auto status = parseInteger(*value);
        if (status && *status >= 200 && *status <= 599) return Behaviour{.status = static_cast<int>(*status)};
    }
    if (word == "slow") {
        const auto seconds = parseNumber(*value);
        if (seconds && *seconds >= 0 && *seconds <= 600) {
            return Behaviour{.delay = std::chrono::milliseconds(static_cast<std::int64_t>(*seconds * 1000))};
        }
    }
    return std::nullopt;
}

}  // namespace

Failure changeService(examples::Service& service, std::span<const std::string> words, const std::string& folder) {
    if (service.port() == 0) return "the game uses a service that is not its own";
    if (words.size() == 1 && words[0] == "normal") {
        service.behaveNormally();
        return std::nullopt;
    }
    if (words.size() < 2 || words.size() > 3) return "";
    const std::string* value = words.size() == 3 ? &words[2] : nullptr;
    std::optional<Behaviour> behaviour;
    if (value && words[1] == "answer") {
        auto body = readBody(std::filesystem::path(folder) / *value, service.baseURL());
        if (!body) return "cannot read " + *value;
        behaviour = Behaviour{.status = 200, .body = std::move(body)};
    } else {
        behaviour = parseBehaviour(words[1], value);
    }
    if (!behaviour) return "";
    service.behave(words[0], std::move(*behaviour));
    return std::nullopt;
}

}  // namespace flarebox::hostgame
