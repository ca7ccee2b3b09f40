#include <Networking/NSHTTPURLResponse.h>

#include <algorithm>
#include <utility>

namespace flarebox {

namespace {

struct StatusText {
    int code;
    const char* text;
};

constexpr StatusText statusTexts[] = {
    {200, "no error"},
    {201, "created"},
    {202, "accepted"},
    {204, "no content"},
    {206, "partial content"},
    {300, "multiple choices"},
    {301, "moved permanently"},
    {302, "found"},
    {303, "see other"},
    {304, "not modified"},
    {307, "temporarily redirected"},
    {308, "permanently redirected"},
    {400, "bad request"},
    {401, "unauthorized"},
    {402, "payment required"},
    {403, "forbidden"},
    {404, "not found"},
    {405, "method not allowed"},
    {406, "unacceptable"},
    {407, "proxy authentication required"},
    {408, "request timed out"},
    {409, "conflict"},
    {410, "no longer exists"},
    {411, "length required"},
    {412, "precondition failed"},
    {413, "request too large"},
    {414, "requested URL too long"},
    {415, "unsupported media type"},
    {416, "requested range not satisfiable"},
    {417, "expectation failed"},
    {422, "unprocessable content"},
    {429, "too many requests"},
    {500, "internal server error"},
    {501, "unimplemented"},
    {502, "bad gateway"},
    {503, "service unavailable"},
    {504, "gateway timed out"},
    {505, "unsupported version"},
};

std::string mimeType(const HeaderFields& fields) {
    const std::string* type = headerFieldNamed(fields, "Content-Type");
    if (!type) return {};
    std::string result = type->substr(0, type->find_first_of(";, \t"));
    std::transform(result.begin(), result.end(), result.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    });
    return result;
}

}  // namespace

const ClassInfo& NSHTTPURLResponse::staticClass() {
    static const ClassInfo info("NSHTTPURLResponse", &NSObject::staticClass(), nullptr);
    return info;
}

NSHTTPURLResponse::NSHTTPURLResponse(NSURL url, int statusCode, HeaderFields fields)
    : URL_(std::move(url)), statusCode_(statusCode), fields_(std::move(fields)), MIMEType_(mimeType(fields_)) {}

NSString NSHTTPURLResponse::valueForHTTPHeaderField(std::string_view field) const {
    const std::string* value = headerFieldNamed(fields_, field);
    return value ? NSString(*value) : NSString();
}

std::string NSHTTPURLResponse::localizedStringForStatusCode(int statusCode) {
    auto known = std::find_if(std::begin(statusTexts), std::end(statusTexts),
                              [&](auto& entry) { return entry.code == statusCode; });
    if (known != std::end(statusTexts)) return known->text;
    switch (statusCode / 100) {
        case 1:
            return "informational";
        case 2:
            return "success";
        case 3:
            return "redirected";
        case 4:
            return "client error";
        default:
            return "server error";
    }
}

std::string NSHTTPURLResponse::description() const {
    return URL_.absoluteString() + ": " + std::to_string(statusCode_) + " " + localizedStringForStatusCode(statusCode_);
}

}  // namespace flarebox
