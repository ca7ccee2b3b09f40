#include <Tests/Faults/Fault.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace flarebox::testing {
namespace {

using Connection = ScriptedServer::Connection;
using Kind = Fault::Kind;

constexpr std::array<const char*, Fault::kinds> names = {"reset",     "cut",        "stall",      "drip",
                                                         "corrupt",   "another",    "circle",     "too long",
                                                         "too short", "bad chunks", "two lengths"};

struct Message {
    /// With the end of its last line, without the empty one.
    std::string head;
    std::string body;
};

Message parted(const std::string& answer) {
    const std::size_t end = answer.find("\r\n\r\n");
    if (end == std::string::npos) return {answer, {}};
    return {answer.substr(0, end + 2), answer.substr(end + 4)};
}

std::string withoutLength(std::string head) {
    const std::size_t start = head.find("\r\nContent-Length:");
    if (start != std::string::npos) head.erase(start, head.find("\r\n", start + 2) - start);
    return head;
}

std::string withLength(const Message& message, std::size_t length) {
    return withoutLength(message.head) + "Content-Length: " + std::to_string(length) + "\r\n\r\n" + message.body;
}

std::string corrupted(std::string answer, std::uint32_t at) {
    constexpr std::size_t most = 8;
    const std::size_t end = std::min(answer.size(), at + most);
    for (std::size_t i = at; i < end; ++i) answer[i] = static_cast<char>(answer[i] ^ (1 + (at + i) % 255));
    return answer;
}

std::string another(const Fault& fault) {
    std::string body(fault.length, fault.at % 2 == 0 ? ' ' : 'x');
    // What is right in form and says nothing is harder to refuse.
    if (std::string_view(fault.type) == "application/json") body += fault.at % 3 == 0 ? "{}" : "[]";
    return "HTTP/1.1 " + std::to_string(fault.status) + " Another\r\nContent-Type: " + fault.type +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string chunked(const Message& message, std::size_t announced, std::string_view badSize) {
    constexpr char digits[] = "0123456789abcdef";
    std::string size;
    for (std::size_t left = message.body.size(); left > 0; left /= 16) size.insert(size.begin(), digits[left % 16]);
    std::string text = withoutLength(message.head) + "Transfer-Encoding: chunked\r\n";
    if (announced > 0) text += "Content-Length: " + std::to_string(announced) + "\r\n";
    text += "\r\n";
    if (!message.body.empty()) text += size + "\r\n" + message.body + "\r\n";
    return text.append(badSize.empty() ? "0" : badSize).append("\r\n\r\n");
}

/// Waits for the network to be well; then what is left comes after all, or never.
bool finishLater(Connection& connection, const Fault& fault, std::string_view rest,
                 const std::function<bool()>& isHealed) {
    while (!isHealed() && connection.pause(0.005)) {
    }
    if (fault.resumes) return connection.send(rest);
    connection.reset();
    return false;
}

bool drip(Connection& connection, const Fault& fault, std::string_view rest, const std::function<bool()>& isHealed) {
    while (!rest.empty() && !isHealed()) {
        if (!connection.send(rest.substr(0, 1)) || !connection.pause(0.005)) return false;
        rest.remove_prefix(1);
    }
    return finishLater(connection, fault, rest, isHealed);
}

}  // namespace

std::string Fault::description() const {
    std::string text = std::string(names[static_cast<std::size_t>(kind)]);
    if (kind == Kind::Another) return text + " " + std::to_string(status) + " '" + type + "' " + std::to_string(length);
    text += " at " + std::to_string(at);
    return kind == Kind::Stall || kind == Kind::Drip ? text + (resumes ? ", resumes" : ", breaks") : text;
}

bool sendWithFault(Connection& connection, const Fault& fault, const std::string& answer,
                   const std::function<bool()>& isHealed) {
    const std::uint32_t at = fault.at % static_cast<std::uint32_t>(answer.size() + 1);
    const std::string_view start = std::string_view(answer).substr(0, at), rest = std::string_view(answer).substr(at);
    const Message message = parted(answer);
    const std::size_t length = message.body.size();
    switch (fault.kind) {
        case Kind::Reset:
            connection.send(start);
            connection.reset();
            return false;
        case Kind::Cut:
            connection.send(start);
            return false;
        case Kind::Stall:
            return connection.send(start) && finishLater(connection, fault, rest, isHealed);
        case Kind::Drip:
            return connection.send(start) && drip(connection, fault, rest, isHealed);
        case Kind::Corrupt:
            return connection.send(corrupted(answer, at));
        case Kind::Another:
            return connection.send(another(fault));
        case Kind::Circle:
            return connection.send("HTTP/1.1 302 Found\r\nLocation: ?round\r\nContent-Length: 0\r\n\r\n");
        case Kind::TooLong:
            return connection.send(withLength(message, length + 1 + fault.at % 5000)) &&
                   finishLater(connection, {.kind = Kind::Stall}, {}, isHealed);
        case Kind::TooShort:
            return connection.send(withLength(message, length - std::min<std::size_t>(length, 1 + fault.at % 5000)));
        case Kind::BadChunks:
            return connection.send(chunked(message, 0, fault.at % 2 == 0 ? "zz" : "fffffffffffffffff"));
        case Kind::TwoLengths:
            return connection.send(chunked(message, 1 + fault.at % (length + 100), {}));
    }
    return false;
}

}  // namespace flarebox::testing
