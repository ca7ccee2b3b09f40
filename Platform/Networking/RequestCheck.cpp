#include <Networking/RequestCheck.h>

#include <Networking/NetworkError.h>

#include <algorithm>
#include <string_view>

namespace flarebox {

namespace {

bool isTokenCharacter(char letter) {
    constexpr std::string_view marks = "!#$%&'*+-.^_`|~";
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9') ||
           marks.find(letter) != std::string_view::npos;
}

bool isToken(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), isTokenCharacter);
}

bool isFieldValue(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char letter) {
        auto byte = static_cast<unsigned char>(letter);
        return byte == '\t' || (byte >= 0x20 && byte != 0x7F);
    });
}

// A name that is unfit to be sent is unfit to be printed as it is, too.
std::string printable(std::string_view text) {
    std::string result;
    for (char letter : text) result += isTokenCharacter(letter) ? letter : '?';
    return result;
}

}  // namespace

Ref<NSError> reasonNotToSend(const NSURLRequest& request) {
    const NSURL& url = request.URL();
    const std::string address = url.absoluteString();
    if (!url) return networkError(NSURLErrorBadURL, address);
    if (url.scheme() != "http" && url.scheme() != "https") return networkError(NSURLErrorUnsupportedURL, address);
    if (url.host().empty()) return networkError(NSURLErrorBadURL, "The address names no host.", address);
    if (!isToken(request.HTTPMethod())) {
        return networkError(NSURLErrorBadURL, "The method of the request holds characters that cannot be sent.",
                            address);
    }
    for (auto& [name, value] : request.allHTTPHeaderFields()) {
        if (isToken(name) && isFieldValue(value)) continue;
        return networkError(NSURLErrorBadURL,
                            "The header field " + printable(name) + " holds characters that cannot be sent.", address);
    }
    return nullptr;
}

}  // namespace flarebox
