#pragma once

#include <Networking/Backend/Curl/CurlHandles.h>
#include <Networking/Transport.h>

#include <cstddef>
#include <string>

namespace flarebox {

/// One exchange under way on a handle of its own. Network thread only; stays at its address.
class CurlTransfer {
public:
    /// `noProxy` lists the hosts that are reached without a proxy.
    CurlTransfer(EasyHandle handle, TransferRequest request, Transport::Completion completion,
                 const std::string& noProxy);
    CurlTransfer(const CurlTransfer&) = delete;
    CurlTransfer& operator=(const CurlTransfer&) = delete;

    CURL* handle() const { return handle_.get(); }
    const std::string& url() const { return request_.url; }
    /// Uptime at which the transfer fails unless a byte moves before.
    double deadline() const { return lastActivity_ + idleTimeout_; }
    /// Whether the answer came over HTTP/2 or later.
    bool isMultiplexed() const;

    void completeWith(CURLcode code);
    /// The handle, cleared for another transfer; this one is over.
    EasyHandle takeHandle();

private:
    /// Why one of our own functions ended the transfer.
    enum class Refusal { None, BodyTooLong, HeaderTooLong, FileFailed };

    void setUp(const std::string& noProxy);
    void setUpLimits();
    void setUpMethod();
    void setUpFields();
    void setUpCallbacks();
    void addField(const std::string& line);

    std::size_t receiveHeader(std::string_view line);
    std::size_t receiveBody(std::string_view bytes);
    bool isSuccess() const;
    bool storeBody(std::string_view bytes);
    void finishBody();
    void beginAnswer();
    void addResponseField(std::string_view line);
    void stayOnSecureConnections();
    bool noteProgress(curl_off_t received, curl_off_t sent);
    void noteActivity();

    Ref<NSError> errorFor(CURLcode code);

    EasyHandle handle_;
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
