#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flarebox {

/// Names and values of header fields, in order. Names are compared without regard to the case of ASCII letters.
using HeaderFields = std::vector<std::pair<std::string, std::string>>;

/// The value of the first field of that name, or null.
FLAREBOX_EXPORT const std::string* headerFieldNamed(const HeaderFields& fields, std::string_view name);

/// What to load and how. A task takes a copy, so that later changes of a request do not reach what is under way.
/// May be made on any thread; one request is not used from two threads at once.
class FLAREBOX_EXPORT NSURLRequest : public NSObject {
    FLAREBOX_CLASS(NSURLRequest)
public:
    explicit NSURLRequest(NSURL url);
    static Ref<NSURLRequest> requestWithURL(const NSURL& url);

    /// Absent when the request was made without a usable address; sending it then fails.
    const NSURL& URL() const { return URL_; }
    /// "GET" unless set otherwise.
    const std::string& HTTPMethod() const { return HTTPMethod_; }
    /// In the order in which the fields were first set.
    const HeaderFields& allHTTPHeaderFields() const { return fields_; }
    /// Absent when the field is not set.
    NSString valueForHTTPHeaderField(std::string_view field) const;
    /// Absent for none.
    const NSData& HTTPBody() const { return HTTPBody_; }
    /// Seconds without a single byte arriving or leaving after which loading fails; fractions count. 0, or anything
    /// that is no positive number, stands for the transport's default of 60 seconds.
    double timeoutInterval() const { return timeoutInterval_; }

    Ref<class NSMutableURLRequest> mutableCopy() const;
    std::string description() const override;

protected:
    NSURL URL_;
    std::string HTTPMethod_ = "GET";
    HeaderFields fields_;
    NSData HTTPBody_;
    double timeoutInterval_ = 0;
};

class FLAREBOX_EXPORT NSMutableURLRequest : public NSURLRequest {
    FLAREBOX_CLASS(NSMutableURLRequest)
public:
    using NSURLRequest::NSURLRequest;
    static Ref<NSMutableURLRequest> requestWithURL(const NSURL& url);

    void setURL(NSURL url) { URL_ = std::move(url); }
    void setHTTPMethod(std::string method) { HTTPMethod_ = std::move(method); }
    /// Replaces the field of that name, whatever its case; an absent value removes it. Name and value are checked when
    /// the request is sent: one that holds a line break or another character that no field can hold is never sent.
    /// Fields that frame the message (Content-Length, Transfer-Encoding, Connection, Upgrade) are left to the
    /// transport.
    void setValueForHTTPHeaderField(const NSString& value, std::string_view field);
    void setHTTPBody(NSData body) { HTTPBody_ = std::move(body); }
    void setTimeoutInterval(double seconds) { timeoutInterval_ = seconds; }
};

}  // namespace flarebox
