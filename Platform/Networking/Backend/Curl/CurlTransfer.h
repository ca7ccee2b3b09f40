#pragma once

#include <Networking/Backend/Curl/CurlHandles.h>
#include <Networking/Transport.h>

#include <cstddef>
#include <string>

namespace flarebox {

/// One exchange under way on a handle of its own. No handle serves twice: the library (7.88) keeps a pointer to the
/// last header field of the answer before, and a malicious server can have it followed. Whoever holds the library's
/// lock; stays at its address.
class CurlTransfer {
public:
    /// `noProxy` lists the hosts that are reached without a proxy.
    CurlTransfer(const std::string& noProxy, TransferRequest request, Transport::Completion completion);
    CurlTransfer(const CurlTransfer&) = delete;
    CurlTransfer& operator=(const CurlTransfer&) = delete;

    CURL* handle() const { return handle_.get(); }
    const TransferRequest& request() const { return request_; }
    /// Uptime at which the transfer fails unless a byte moves before.
    double deadline() const { return lastActivity_ + idleTimeout_; }
    /// Whether anything was answered so far.
    bool hasAnswer() const;
    /// Whether the answer came over HTTP/2 or later.
    bool isMultiplexed() const;

    /// What came of it, and who is to know.
    struct Ended {
        Transport::Completion completion;
        TransferResult result;
    };
    Ended endWith(CURLcode code);

private:
    /// Why one of our own functions ended the transfer.
    enum class Refusal { None, BodyTooLong, HeaderTooLong, FileFailed, OutOfMemory };

    void setUpPolicy(const std::string& noProxy);
    void setUpCallbacks();
    void setUp();
    void setUpMethod();
    void setUpFields();
    void addField(const std::string& line);

    std::size_t receiveHeader(std::string_view line);
    std::size_t receiveBody(std::string_view bytes);
    bool isSuccess() const;
    bool storeBody(std::string_view bytes);
    void keepBody(std::string_view bytes);
    void finishBody();
    void beginAnswer();
    void addResponseField(std::string_view line);
    void stayOnSecureConnections();
    bool noteProgress(curl_off_t received, curl_off_t sent);
    void noteActivity();

    Ref<NSError> errorFor(CURLcode code);

    EasyHandle handle_{curl_easy_init()};
    TransferRequest request_;
    Transport::Completion completion_;
    StringList fields_;
    double idleTimeout_;
    double lastActivity_;
    curl_off_t bytesMoved_ = 0;
    std::size_t headerLength_ = 0;
    bool headEnded_ = false;
    Refusal refusal_ = Refusal::None;
    TransferResult result_;
    std::string body_;
    std::uint64_t bodyLength_ = 0;
};

}  // namespace flarebox
