#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <Foundation/NSURLRequest.h>

#include <string>
#include <string_view>

namespace flarebox {

/// Builds requests whose parameters travel as a query ("GET", "HEAD", "DELETE") or as a JSON body (every other method).
/// Any thread.
class FLAREBOX_EXPORT AFJSONRequestSerializer : public NSObject {
    FLAREBOX_CLASS(AFJSONRequestSerializer)
public:
    static Ref<AFJSONRequestSerializer> serializer();

    /// Null, with `error` set unless null, when the address is no URL or the parameters cannot be written as JSON.
    /// Absent parameters leave query and body alone. The time-out stays 0 and no header but Content-Type (of a body) is
    /// set.
    Ref<NSMutableURLRequest> requestWithMethod(std::string_view method, const NSString& URLString,
                                               const Value& parameters, Ref<NSError>* error = nullptr) const;

    /// Parameters as the text of a query, percent-encoded: keys in order of their bytes, `key=value` joined by `&`;
    /// `a[b]=` for the entries of nested dictionaries, `a[]=` for elements of arrays, a JSON null as the key alone.
    static std::string queryString(const Value& parameters);
};

}  // namespace flarebox
