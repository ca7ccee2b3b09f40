#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <Networking/NSHTTPURLResponse.h>

#include <cstddef>
#include <set>
#include <string>

namespace flarebox {

/// Decides whether an answer is acceptable and turns its body into an object; this one leaves the body as NSData.
/// Set up on the main thread before the first task uses it; from then on it is used on worker threads and must not
/// change.
class FLAREBOX_EXPORT AFHTTPResponseSerializer : public NSObject {
    FLAREBOX_CLASS(AFHTTPResponseSerializer)
public:
    static Ref<AFHTTPResponseSerializer> serializer();

    /// Content types in lower case, without parameters; "image/*" stands for every one that begins so. Empty: any.
    const std::set<std::string>& acceptableContentTypes() const { return acceptableContentTypes_; }
    void setAcceptableContentTypes(std::set<std::string> types) { acceptableContentTypes_ = std::move(types); }

    /// Null when the answer is acceptable. A status outside 200-299 gives -1011, a body of an unacceptable content type
    /// -1016. An empty body needs no content type. Any thread.
    Ref<NSError> validateResponse(const NSHTTPURLResponse& response, const NSData& data) const;

    /// The object that the body stands for, absent for an empty body; or absent and `error` set. Any thread.
    virtual Value responseObjectForResponse(const NSHTTPURLResponse& response, const NSData& data,
                                            Ref<NSError>& error) const;
    /// Whether a body of that many bytes is decoded so quickly that handing it to another thread is not worth it.
    virtual bool decodesQuickly(std::size_t bytes) const;

private:
    bool acceptsContentType(const std::string& type) const;

    std::set<std::string> acceptableContentTypes_;
};

}  // namespace flarebox
