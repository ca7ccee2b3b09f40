#include <Foundation/Storage.h>
#include <Foundation/Values.h>

#include <algorithm>
#include <charconv>

namespace flarebox {
namespace {

/// The parts of a link as they are written (RFC 3986, section 4.1).
struct Parts {
    std::string_view scheme;
    std::string_view host;
    std::string_view port;
    std::string_view path;
    std::string_view query;
};

bool isAlpha(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// Letters, digits, unreserved marks and sub-delimiters may stand anywhere; `also` names what else may stand here.
bool holdsOnly(std::string_view text, std::string_view also) {
    constexpr std::string_view everywhere = "-._~!$&'()*+,;=";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '%') {
            if (i + 2 >= text.size() || !isHexDigit(text[i + 1]) || !isHexDigit(text[i + 2])) return false;
            i += 2;
        } else if (!isAlpha(c) && !isDigit(c) && everywhere.find(c) == everywhere.npos && also.find(c) == also.npos) {
            return false;
        }
    }
    return true;
}

bool isScheme(std::string_view text) {
    return !text.empty() && isAlpha(text.front()) && std::ranges::all_of(text, [](char c) {
        return isAlpha(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
    });
}

std::optional<int> portNumber(std::string_view digits) {
    int port = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    if (error != std::errc() || end != digits.data() + digits.size() || port < 0 || port > 65535) return std::nullopt;
    return port;
}

/// Between "//" and the path: user, host and port. False when it cannot be one.
bool parseAuthority(std::string_view text, Parts& parts) {
    if (const std::size_t at = text.rfind('@'); at != text.npos) {
        if (!holdsOnly(text.substr(0, at), ":")) return false;
        text.remove_prefix(at + 1);
    }
    std::size_t hostEnd = text.rfind(':');
    if (text.starts_with('[')) {
        const std::size_t bracket = text.find(']');
        if (bracket == text.npos || bracket == 1) return false;
        parts.host = text.substr(1, bracket - 1);
        if (!holdsOnly(parts.host, ":")) return false;
        hostEnd = bracket + 1;
        if (hostEnd < text.size() && text[hostEnd] != ':') return false;
    } else {
        parts.host = text.substr(0, hostEnd);
        if (!holdsOnly(parts.host, "")) return false;
    }
    if (hostEnd < text.size()) parts.port = text.substr(hostEnd + 1);
    return parts.port.empty() || portNumber(parts.port);
}

std::optional<Parts> parse(std::string_view text) {
    if (text.empty()) return std::nullopt;
    Parts parts;
    if (const std::size_t hash = text.find('#'); hash != text.npos) {
        if (!holdsOnly(text.substr(hash + 1), ":@/?")) return std::nullopt;
        text = text.substr(0, hash);
    }
    if (const std::size_t mark = text.find('?'); mark != text.npos) {
        parts.query = text.substr(mark + 1);
        if (!holdsOnly(parts.query, ":@/?")) return std::nullopt;
        text = text.substr(0, mark);
    }
    // A colon before the first slash ends a scheme; a relative path cannot have one there.
    if (const std::size_t colon = text.find_first_of(":/"); colon != text.npos && text[colon] == ':') {
        parts.scheme = text.substr(0, colon);
        if (!isScheme(parts.scheme)) return std::nullopt;
        text.remove_prefix(colon + 1);
    }
    if (text.starts_with("//")) {
        text.remove_prefix(2);
        const std::size_t slash = std::min(text.find('/'), text.size());
        if (!parseAuthority(text.substr(0, slash), parts)) return std::nullopt;
        text.remove_prefix(slash);
    }
    parts.path = text;
    if (!holdsOnly(parts.path, ":@/")) return std::nullopt;
    return parts;
}

Parts partsOf(const NSURL& url) {
    if (!url) return {};
    return parse(detail::ValueAccess::text(url)).value_or(Parts{});
}

std::string unescaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        unsigned code = 0;
        std::from_chars(text.data() + i + 1, text.data() + i + 3, code, 16);
        result += static_cast<char>(code);
        i += 2;
    }
    return result;
}

}  // namespace

NSURL NSURL::URLWithString(const NSString& text) {
    if (!parse(text.text())) return {};
    return NSURL(detail::ValueAccess::as(Kind::URL, text), Checked{});
}

std::string NSURL::absoluteString() const {
    return *this ? std::string(detail::ValueAccess::text(*this)) : std::string();
}

std::string NSURL::scheme() const {
    std::string scheme(partsOf(*this).scheme);
    for (char& c : scheme) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return scheme;
}

std::string NSURL::host() const {
    return unescaped(partsOf(*this).host);
}

std::string NSURL::path() const {
    return unescaped(partsOf(*this).path);
}

std::string NSURL::query() const {
    return std::string(partsOf(*this).query);
}

std::optional<int> NSURL::port() const {
    return portNumber(partsOf(*this).port);
}

}  // namespace flarebox
