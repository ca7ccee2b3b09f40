#pragma once

#include <Foundation/Export.h>
#include <Networking/AFHTTPResponseSerializer.h>
#include <Networking/NSURLSessionDataTask.h>

#include <cstdint>
#include <span>
#include <string>

namespace flarebox {

/// Makes tasks. Its tasks do not need it once they are made. Main thread only.
class FLAREBOX_EXPORT AFURLSessionManager : public NSObject {
    FLAREBOX_CLASS(AFURLSessionManager)
public:
    AFURLSessionManager();
    ~AFURLSessionManager() override;
    static Ref<AFURLSessionManager> manager();

    /// A task for a copy of the request; it does nothing before it is resumed. A null request gives a task that fails.
    Ref<NSURLSessionDataTask> dataTaskWithRequest(const Ref<NSURLRequest>& request,
                                                  NSURLSessionDataTask::Completion completion) const;

    /// The same, its answer decoded by another serializer than the manager's; null for that one.
    Ref<NSURLSessionDataTask> dataTaskWithRequest(const Ref<NSURLRequest>& request,
                                                  const Ref<AFHTTPResponseSerializer>& serializer,
                                                  NSURLSessionDataTask::Completion completion) const;

    /// A task whose answer, up to `defaultMaximumDownloadLength` bytes of it, goes to a file as it arrives.
    /// `destination` is asked for its path, in a folder that exists, on the main thread when the task is resumed; the
    /// file appears there, in the place of another one, once it is whole, and is the completion's object as text. A
    /// status outside 200-299 is an error and leaves no file.
    Ref<NSURLSessionDataTask> downloadTaskWithRequest(const Ref<NSURLRequest>& request,
                                                      std::function<std::string()> destination,
                                                      NSURLSessionDataTask::Completion completion) const;

    /// Decodes the answers of tasks made from now on; never null. JSON unless set otherwise.
    const Ref<AFHTTPResponseSerializer>& responseSerializer() const { return settings_.responseSerializer; }
    void setResponseSerializer(Ref<AFHTTPResponseSerializer> serializer);

    /// Bytes of a body, decompressed, beyond which an answer is refused with NSURLErrorDataLengthExceedsMaximum.
    static constexpr std::uint64_t defaultMaximumResponseLength = std::uint64_t{16} << 20;
    static constexpr std::uint64_t defaultMaximumDownloadLength = std::uint64_t{256} << 20;
    std::uint64_t maximumResponseLength() const { return settings_.maximumResponseLength; }
    void setMaximumResponseLength(std::uint64_t bytes) { settings_.maximumResponseLength = bytes; }

    /// A file of certificates (PEM) to trust instead of the system's, for a service with an authority of its own.
    /// Empty: the system's. There is no way to switch the check off.
    const std::string& certificateAuthorityFile() const { return settings_.certificateAuthorityFile; }
    void setCertificateAuthorityFile(std::string path) { settings_.certificateAuthorityFile = std::move(path); }

    /// The public keys of which the server must have one, besides a certificate that is trusted: each the base64 text
    /// of the SHA-256 of a key's SubjectPublicKeyInfo (RFC 7469, 2.4). Holds for tasks made from now on and for the
    /// servers that redirects lead to; an address without TLS is refused. A text that is no such hash fits no key.
    /// Empty: any key.
    void setPinnedPublicKeys(std::span<const std::string> keys);

private:
    NSURLSessionDataTask::Settings settings_;
};

}  // namespace flarebox
