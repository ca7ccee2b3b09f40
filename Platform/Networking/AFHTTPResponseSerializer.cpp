#include <Networking/AFHTTPResponseSerializer.h>

#include <Networking/NetworkError.h>

namespace flarebox {

const ClassInfo& AFHTTPResponseSerializer::staticClass() {
    static const ClassInfo info("AFHTTPResponseSerializer", &NSObject::staticClass(), nullptr);
    return info;
}

Ref<AFHTTPResponseSerializer> AFHTTPResponseSerializer::serializer() {
    return make<AFHTTPResponseSerializer>();
}

Ref<NSError> AFHTTPResponseSerializer::validateResponse(const NSHTTPURLResponse& response, const NSData& data) const {
    const int status = response.statusCode();
    const std::string url = response.URL().absoluteString();
    if (status < 200 || status > 299) {
        return networkError(NSURLErrorBadServerResponse,
                            "Request failed: " + NSHTTPURLResponse::localizedStringForStatusCode(status) + " (" +
                                std::to_string(status) + ")",
                            url);
    }
    if (data.length() == 0 || acceptsContentType(response.MIMEType())) return nullptr;
    return networkError(
        NSURLErrorCannotDecodeContentData,
        "Request failed: unacceptable content-type: " + (response.MIMEType().empty() ? "none" : response.MIMEType()),
        url);
}

bool AFHTTPResponseSerializer::acceptsContentType(const std::string& type) const {
    return acceptableContentTypes_.empty() || acceptableContentTypes_.contains(type) ||
           acceptableContentTypes_.contains(type.substr(0, type.find('/')) + "/*");
}

Value AFHTTPResponseSerializer::responseObjectForResponse(const NSHTTPURLResponse& response, const NSData& data,
                                                          Ref<NSError>& error) const {
    error = validateResponse(response, data);
    return error || data.length() == 0 ? Value() : Value(data);
}

bool AFHTTPResponseSerializer::decodesQuickly(std::size_t) const {
    return true;
}

}  // namespace flarebox
