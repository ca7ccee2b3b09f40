#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSURLRequest.h>
#include <Foundation/Values.h>

#include <string>
#include <string_view>

namespace flarebox {

/// The head of an answer. Immutable; any thread.
class FLAREBOX_EXPORT NSHTTPURLResponse : public NSObject {
    FLAREBOX_CLASS(NSHTTPURLResponse)
public:
    NSHTTPURLResponse(NSURL url, int statusCode, HeaderFields fields);

    /// The address that answered, after redirects.
    const NSURL& URL() const { return URL_; }
    int statusCode() const { return statusCode_; }
    /// In the order in which they arrived; the values of fields of one name are joined with ", ".
    const HeaderFields& allHeaderFields() const { return fields_; }
    /// Absent when there is no such field; the case of the name does not matter.
    NSString valueForHTTPHeaderField(std::string_view field) const;
    /// The content type in lower case without its parameters, "application/json" for example; empty when not given.
    const std::string& MIMEType() const { return MIMEType_; }

    /// The status in words, in lower case: "not found" for 404.
    static std::string localizedStringForStatusCode(int statusCode);
    std::string description() const override;

private:
    NSURL URL_;
    int statusCode_;
    HeaderFields fields_;
    std::string MIMEType_;
};

}  // namespace flarebox
