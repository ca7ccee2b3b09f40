#include <Networking/Backend/Curl/CurlTransfer.h>

#include <Foundation/Clock.h>
#include <Networking/Backend/Curl/CurlErrors.h>
#include <Networking/NetworkError.h>
#include <Networking/UserAgent.h>

#include <algorithm>
#include <new>
#include <utility>

namespace flarebox {

namespace {

constexpr std::size_t maximumHeaderLength = 256 * 1024;
constexpr std::size_t maximumFieldCount = 1000;
constexpr long bufferLength = 16 * 1024;
/// What comes for a file is long, as a rule: three system calls for each buffer of it are worth the memory.
constexpr long bufferLengthOfDownloads = 128 * 1024;
constexpr double longestIdleTimeout = 1e9;

double usableTimeout(double seconds) {
    if (!(seconds > 0)) return Transport::defaultIdleTimeout;
    return std::min(seconds, longestIdleTimeout);
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Fields that say how a message is framed: a caller that sets them can only make them wrong.
bool belongsToTransport(const std::string& name) {
    static const HeaderFields framing = {
        {"Content-Length", {}}, {"Transfer-Encoding", {}}, {"Connection", {}}, {"Upgrade", {}}};
    return headerFieldNamed(framing, name);
}

bool isRedirect(CURL* handle) {
    long status = 0;
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
    return status >= 300 && status < 400;
}

Ref<NSError> fileFailure(const AtomicFile& file, NSURLErrorCode code, const std::string& url) {
    const Ref<NSError> reason = file.error();
    return reason ? networkError(code, reason->localizedDescription(), url) : networkError(code, url);
}

bool isSecure(CURL* handle) {
    char* scheme = nullptr;
    curl_easy_getinfo(handle, CURLINFO_SCHEME, &scheme);
    return scheme && std::string_view(scheme) == "HTTPS";
}

}  // namespace

CurlTransfer::CurlTransfer(const std::string& noProxy, TransferRequest request, Transport::Completion completion)
    : request_(std::move(request)),
      completion_(std::move(completion)),
      idleTimeout_(usableTimeout(request_.idleTimeout)),
      lastActivity_(Clock::real().uptime()) {
    setUpPolicy(noProxy);
    setUpCallbacks();
    setUp();
    setUpMethod();
    setUpFields();
}

void CurlTransfer::setUpPolicy(const std::string& noProxy) {
    CURL* curl = handle();
    curl_easy_setopt(curl, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(curl, CURLOPT_ACCEPT_ENCODING, "gzip");
    curl_easy_setopt(curl, CURLOPT_USERAGENT, userAgent);
    curl_easy_setopt(curl, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    curl_easy_setopt(curl, CURLOPT_NOPROXY, noProxy.c_str());
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    // A name server that hangs must hold up neither an idle time-out nor the shutdown.
    curl_easy_setopt(curl, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, static_cast<long>(Transport::maximumRedirects));
    curl_easy_setopt(curl, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
}

void CurlTransfer::setUpCallbacks() {
    CURL* curl = handle();
    for (const CURLoption option : {CURLOPT_PRIVATE, CURLOPT_HEADERDATA, CURLOPT_WRITEDATA, CURLOPT_XFERINFODATA}) {
        curl_easy_setopt(curl, option, this);
    }
    curl_easy_setopt(
        curl, CURLOPT_HEADERFUNCTION, +[](char* bytes, std::size_t size, std::size_t count, void* self) -> std::size_t {
            return static_cast<CurlTransfer*>(self)->receiveHeader({bytes, size * count});
        });
    curl_easy_setopt(
        curl, CURLOPT_WRITEFUNCTION, +[](char* bytes, std::size_t size, std::size_t count, void* self) -> std::size_t {
            return static_cast<CurlTransfer*>(self)->receiveBody({bytes, size * count});
        });
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(
        curl, CURLOPT_XFERINFOFUNCTION,
        +[](void* self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent) -> int {
            return static_cast<CurlTransfer*>(self)->noteProgress(received, sent) ? 0 : 1;
        });
}

void CurlTransfer::setUp() {
    CURL* curl = handle();
    curl_easy_setopt(curl, CURLOPT_URL, request_.url.c_str());
    curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_BUFFERSIZE, request_.file ? bufferLengthOfDownloads : bufferLength);
    curl_easy_setopt(curl, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(request_.maximumBodyLength));
    const std::string& pins = request_.pinnedPublicKeys;
    if (!pins.empty()) curl_easy_setopt(curl, CURLOPT_PINNEDPUBLICKEY, pins.c_str());
    if (!request_.certificateAuthorityFile.empty()) {
        curl_easy_setopt(curl, CURLOPT_CAINFO, request_.certificateAuthorityFile.c_str());
    }
}

void CurlTransfer::setUpMethod() {
    CURL* curl = handle();
    const std::string& method = request_.method;
    const std::string_view body = request_.body.text();
    if (method == "HEAD") {
        curl_easy_setopt(curl, CURLOPT_NOBODY, 1L);
        return;
    }
    if (method == "POST" || !body.empty()) {
        curl_easy_setopt(curl, CURLOPT_POST, 1L);
        curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        curl_easy_setopt(curl, CURLOPT_POSTFIELDS, body.empty() ? "" : body.data());
    }
    const bool isImplied = method == "POST" || (method == "GET" && body.empty());
    if (!isImplied) curl_easy_setopt(curl, CURLOPT_CUSTOMREQUEST, method.c_str());
}

void CurlTransfer::addField(const std::string& line) {
    if (curl_slist* longer = curl_slist_append(fields_.get(), line.c_str())) {
        static_cast<void>(fields_.release());
        fields_.reset(longer);
    }
}

void CurlTransfer::setUpFields() {
    // A line that ends after the colon takes out what the library would add by itself.
    for (const char* name : {"Accept", "Content-Type", "Expect"}) {
        if (!headerFieldNamed(request_.fields, name)) addField(std::string(name) + ":");
    }
    for (auto& [name, value] : request_.fields) {
        if (!belongsToTransport(name)) addField(value.empty() ? name + ";" : name + ": " + value);
    }
    curl_easy_setopt(handle(), CURLOPT_HTTPHEADER, fields_.get());
}

bool CurlTransfer::hasAnswer() const {
    long status = 0;
    curl_easy_getinfo(handle(), CURLINFO_RESPONSE_CODE, &status);
    return status > 0;
}

bool CurlTransfer::isMultiplexed() const {
    long version = 0;
    curl_easy_getinfo(handle(), CURLINFO_HTTP_VERSION, &version);
    return version >= CURL_HTTP_VERSION_2_0;
}

void CurlTransfer::noteActivity() {
    lastActivity_ = Clock::real().uptime();
}

bool CurlTransfer::noteProgress(curl_off_t received, curl_off_t sent) {
    if (received + sent != bytesMoved_) {
        bytesMoved_ = received + sent;
        noteActivity();
    }
    // Also reached by the bodies of redirects, which are never handed on.
    if (std::cmp_greater(received, request_.maximumBodyLength)) refusal_ = Refusal::BodyTooLong;
    return refusal_ == Refusal::None;
}

std::size_t CurlTransfer::receiveHeader(std::string_view line) {
    noteActivity();
    headerLength_ += line.size();
    if (headerLength_ > maximumHeaderLength || result_.fields.size() > maximumFieldCount) {
        refusal_ = Refusal::HeaderTooLong;
        return 0;
    }
    if (line.starts_with("HTTP/")) {
        beginAnswer();
    } else if (trimmed(line).empty()) {
        headEnded_ = true;
        stayOnSecureConnections();
    } else {
        addResponseField(line);
    }
    return line.size();
}

void CurlTransfer::beginAnswer() {
    headEnded_ = false;
    result_.fields.clear();
    body_.clear();
    bodyLength_ = 0;
}

void CurlTransfer::addResponseField(std::string_view line) {
    auto colon = line.find(':');
    if (colon == std::string_view::npos) return;
    std::string_view name = trimmed(line.substr(0, colon));
    std::string_view value = trimmed(line.substr(colon + 1));
    if (auto* present = const_cast<std::string*>(headerFieldNamed(result_.fields, name))) {
        present->append(", ").append(value);
    } else {
        result_.fields.emplace_back(name, value);
    }
}

void CurlTransfer::stayOnSecureConnections() {
    if (isSecure(handle())) curl_easy_setopt(handle(), CURLOPT_REDIR_PROTOCOLS_STR, "https");
}

bool CurlTransfer::isSuccess() const {
    long status = 0;
    curl_easy_getinfo(handle(), CURLINFO_RESPONSE_CODE, &status);
    return status >= 200 && status < 300;
}

std::size_t CurlTransfer::receiveBody(std::string_view bytes) {
    noteActivity();
    bodyLength_ += bytes.size();
    if (bodyLength_ > request_.maximumBodyLength) {
        refusal_ = Refusal::BodyTooLong;
        return 0;
    }
    return storeBody(bytes) ? bytes.size() : 0;
}

bool CurlTransfer::storeBody(std::string_view bytes) {
    if (request_.file) {
        // What a server says about its failure is not what was asked for.
        if (!isSuccess() || request_.file->write(bytes)) return true;
        refusal_ = Refusal::FileFailed;
        return false;
    }
    // Nothing may be thrown through the library.
    try {
        keepBody(bytes);
        return true;
    } catch (const std::bad_alloc&) {
        refusal_ = Refusal::OutOfMemory;
        return false;
    }
}

void CurlTransfer::keepBody(std::string_view bytes) {
    if (body_.empty()) {
        curl_off_t announced = -1;
        curl_easy_getinfo(handle(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced);
        if (announced > 0) body_.reserve(std::min<std::uint64_t>(announced, request_.maximumBodyLength));
    }
    body_.append(bytes);
}

void CurlTransfer::finishBody() {
    if (!request_.file)
        result_.body = NSData::dataWithString(std::move(body_));
    else if (isSuccess() && !request_.file->commit())
        result_.error = fileFailure(*request_.file, NSURLErrorCannotMoveFile, request_.url);
}

Ref<NSError> CurlTransfer::errorFor(CURLcode code) {
    if (refusal_ == Refusal::BodyTooLong) return networkError(NSURLErrorDataLengthExceedsMaximum, request_.url);
    if (refusal_ == Refusal::OutOfMemory) {
        return networkError(NSURLErrorCannotDecodeContentData, "There is not enough memory for the answer.",
                            request_.url);
    }
    if (refusal_ == Refusal::FileFailed) return fileFailure(*request_.file, NSURLErrorCannotWriteToFile, request_.url);
    if (refusal_ == Refusal::HeaderTooLong) return networkError(NSURLErrorBadServerResponse, request_.url);
    if (code == CURLE_UNSUPPORTED_PROTOCOL && isRedirect(handle()) && isSecure(handle())) {
        return networkError(NSURLErrorUnsupportedURL, "The server redirected to an address that is not secure.",
                            request_.url);
    }
    // The library takes a head that is cut short for a whole one, and reports a line that it finds too long as lack of
    // memory.
    if (code == CURLE_OK && !headEnded_) return networkError(NSURLErrorNetworkConnectionLost, request_.url);
    if (code == CURLE_OUT_OF_MEMORY && headerLength_ > 0 && !headEnded_) {
        return networkError(NSURLErrorBadServerResponse, request_.url);
    }
    return code == CURLE_OK ? nullptr : errorOfTransfer(code, handle(), request_.url);
}

CurlTransfer::Ended CurlTransfer::endWith(CURLcode code) {
    result_.error = errorFor(code);
    if (!result_.error) {
        long status = 0, redirects = 0;
        char* url = nullptr;
        curl_easy_getinfo(handle(), CURLINFO_RESPONSE_CODE, &status);
        curl_easy_getinfo(handle(), CURLINFO_REDIRECT_COUNT, &redirects);
        curl_easy_getinfo(handle(), CURLINFO_EFFECTIVE_URL, &url);
        result_.status = static_cast<int>(status);
        result_.url = redirects > 0 && url ? url : request_.url;
        finishBody();
    }
    return {std::move(completion_), std::move(result_)};
}

}  // namespace flarebox
