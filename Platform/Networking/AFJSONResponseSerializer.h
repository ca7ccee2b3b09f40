#pragma once

#include <Networking/AFHTTPResponseSerializer.h>

namespace flarebox {

/// Decodes answers of the types application/json, text/json and text/javascript. JSON nulls are kept.
/// A body that is not JSON gives an error of NSCocoaErrorDomain with the code 3840.
class AFJSONResponseSerializer : public AFHTTPResponseSerializer {
    FLAREBOX_CLASS(AFJSONResponseSerializer)
public:
    AFJSONResponseSerializer();
    static Ref<AFJSONResponseSerializer> serializer();

    Value responseObjectForResponse(const NSHTTPURLResponse& response, const NSData& data,
                                    Ref<NSError>& error) const override;
    bool decodesQuickly(std::size_t bytes) const override;
};

}  // namespace flarebox
