#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>

#include <string>

namespace flarebox {

/// Domain of transport errors; the codes below belong to it.
inline constexpr const char* NSURLErrorDomain = "NSURLErrorDomain";
/// Domain of errors of decoding and files; 3840 is "not JSON".
inline constexpr const char* NSCocoaErrorDomain = "NSCocoaErrorDomain";
inline constexpr const char* NSLocalizedDescriptionKey = "NSLocalizedDescription";

enum NSURLErrorCode : int {
    NSURLErrorUnknown = -1,
    NSURLErrorCancelled = -999,
    NSURLErrorBadURL = -1000,
    NSURLErrorTimedOut = -1001,
    NSURLErrorUnsupportedURL = -1002,
    NSURLErrorCannotFindHost = -1003,
    NSURLErrorCannotConnectToHost = -1004,
    NSURLErrorNetworkConnectionLost = -1005,
    NSURLErrorHTTPTooManyRedirects = -1007,
    NSURLErrorNotConnectedToInternet = -1009,
    NSURLErrorBadServerResponse = -1011,
    NSURLErrorCannotDecodeContentData = -1016,
    NSURLErrorDataLengthExceedsMaximum = -1103,
    NSURLErrorSecureConnectionFailed = -1200,
    NSURLErrorServerCertificateUntrusted = -1202,
    NSURLErrorCannotCreateFile = -3000,
    NSURLErrorCannotWriteToFile = -3003,
    NSURLErrorCannotMoveFile = -3005,
};
inline constexpr int NSPropertyListReadCorruptError = 3840;

/// Why something failed: a domain, a code within it, and a text for people. Immutable.
class FLAREBOX_EXPORT NSError : public NSObject {
    FLAREBOX_CLASS(NSError)
public:
    /// `userInfo` may be absent.
    NSError(std::string domain, int code, NSDictionary userInfo);
    /// An error whose only information is its localised description.
    static Ref<NSError> errorWithDomain(std::string_view domain, int code, std::string_view localizedDescription);
    /// An error with information of any kind, by keys; absent for none.
    static Ref<NSError> errorWithDomain(std::string_view domain, int code, const NSDictionary& userInfo);

    const std::string& domain() const { return domain_; }       ///< says whose the code is
    int code() const { return code_; }                          ///< within the domain
    const NSDictionary& userInfo() const { return userInfo_; }  ///< may be absent
    /// The text under NSLocalizedDescriptionKey, or one made from domain and code.
    std::string localizedDescription() const;
    /// Domain, code and text, for logs.
    std::string description() const override;

private:
    std::string domain_;
    int code_;
    NSDictionary userInfo_;
};

}  // namespace flarebox
