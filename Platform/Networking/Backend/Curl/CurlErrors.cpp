#include <Networking/Backend/Curl/CurlErrors.h>

#include <Networking/NetworkError.h>

#include <cerrno>

namespace flarebox {

namespace {

int codeOfFailedConnection(CURL* handle) {
    long systemError = 0;
    curl_easy_getinfo(handle, CURLINFO_OS_ERRNO, &systemError);
    return systemError == ENETUNREACH || systemError == ENETDOWN ? NSURLErrorNotConnectedToInternet
                                                                 : NSURLErrorCannotConnectToHost;
}

// Our own check of the address comes before, so what is unsupported is either where a redirect leads or no HTTP at all.
int codeOfUnsupportedProtocol(CURL* handle) {
    long status = 0;
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
    return status >= 300 && status < 400 ? NSURLErrorUnsupportedURL : NSURLErrorBadServerResponse;
}

int platformCode(CURLcode code, CURL* handle) {
    switch (code) {
        case CURLE_OPERATION_TIMEDOUT:
            return NSURLErrorTimedOut;
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
            return NSURLErrorCannotFindHost;
        case CURLE_COULDNT_CONNECT:
        case CURLE_PROXY:
            return codeOfFailedConnection(handle);
        case CURLE_GOT_NOTHING:
        case CURLE_PARTIAL_FILE:
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
        case CURLE_HTTP2:
        case CURLE_HTTP2_STREAM:
            return NSURLErrorNetworkConnectionLost;
        case CURLE_TOO_MANY_REDIRECTS:
            return NSURLErrorHTTPTooManyRedirects;
        case CURLE_URL_MALFORMAT:
            return NSURLErrorBadURL;
        case CURLE_UNSUPPORTED_PROTOCOL:
            return codeOfUnsupportedProtocol(handle);
        case CURLE_FILESIZE_EXCEEDED:
            return NSURLErrorDataLengthExceedsMaximum;
        case CURLE_BAD_CONTENT_ENCODING:
            return NSURLErrorCannotDecodeContentData;
        case CURLE_WEIRD_SERVER_REPLY:
            return NSURLErrorBadServerResponse;
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_ISSUER_ERROR:
        case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
            return NSURLErrorServerCertificateUntrusted;
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CIPHER:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_ENGINE_INITFAILED:
        case CURLE_USE_SSL_FAILED:
            return NSURLErrorSecureConnectionFailed;
        default:
            return NSURLErrorUnknown;
    }
}

}  // namespace

Ref<NSError> errorOfTransfer(CURLcode code, CURL* handle, std::string_view url) {
    int platform = platformCode(code, handle);
    if (platform != NSURLErrorUnknown) return networkError(platform, url);
    return networkError(platform, std::string("The request failed: ") + curl_easy_strerror(code) + ".", url);
}

}  // namespace flarebox
