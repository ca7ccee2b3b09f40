#include <Networking/NetworkError.h>

namespace flarebox {

namespace {

const char* usualDescription(int code) {
    switch (code) {
        case NSURLErrorCancelled:
            return "The request was cancelled.";
        case NSURLErrorBadURL:
            return "The address is no valid URL.";
        case NSURLErrorTimedOut:
            return "The request timed out.";
        case NSURLErrorUnsupportedURL:
            return "Only http and https addresses can be loaded.";
        case NSURLErrorCannotFindHost:
            return "A server with the specified host name could not be found.";
        case NSURLErrorCannotConnectToHost:
            return "Could not connect to the server.";
        case NSURLErrorNetworkConnectionLost:
            return "The network connection was lost.";
        case NSURLErrorHTTPTooManyRedirects:
            return "The server redirected the request too many times.";
        case NSURLErrorNotConnectedToInternet:
            return "The Internet connection appears to be offline.";
        case NSURLErrorBadServerResponse:
            return "The server sent an answer that is not HTTP.";
        case NSURLErrorCannotDecodeContentData:
            return "The content of the answer could not be decoded.";
        case NSURLErrorDataLengthExceedsMaximum:
            return "The answer is larger than allowed.";
        case NSURLErrorSecureConnectionFailed:
            return "A secure connection to the server could not be made.";
        case NSURLErrorCannotCreateFile:
        case NSURLErrorCannotWriteToFile:
        case NSURLErrorCannotMoveFile:
            return "The answer could not be written to a file.";
        case NSURLErrorServerCertificateUntrusted:
            return "The certificate of the server is not trusted.";
        default:
            return "The request failed for an unknown reason.";
    }
}

}  // namespace

Ref<NSError> networkError(int code, std::string_view localizedDescription, std::string_view url) {
    return NSError::errorWithDomain(
        NSURLErrorDomain, code,
        NSDictionary{{NSLocalizedDescriptionKey, localizedDescription}, {NSURLErrorFailingURLStringErrorKey, url}});
}

Ref<NSError> networkError(int code, std::string_view url) {
    return networkError(code, usualDescription(code), url);
}

}  // namespace flarebox
