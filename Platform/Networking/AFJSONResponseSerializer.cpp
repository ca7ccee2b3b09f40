#include <Networking/AFJSONResponseSerializer.h>

#include <Foundation/NSJSONSerialization.h>

namespace flarebox {

namespace {

// Decoding this much takes about as long as waking another thread.
constexpr std::size_t quickLength = 32 * 1024;

}  // namespace

const ClassInfo& AFJSONResponseSerializer::staticClass() {
    static const ClassInfo info("AFJSONResponseSerializer", &AFHTTPResponseSerializer::staticClass(), nullptr);
    return info;
}

AFJSONResponseSerializer::AFJSONResponseSerializer() {
    setAcceptableContentTypes({"application/json", "text/json", "text/javascript"});
}

Ref<AFJSONResponseSerializer> AFJSONResponseSerializer::serializer() {
    return make<AFJSONResponseSerializer>();
}

Value AFJSONResponseSerializer::responseObjectForResponse(const NSHTTPURLResponse& response, const NSData& data,
                                                          Ref<NSError>& error) const {
    error = validateResponse(response, data);
    if (error || data.length() == 0) return {};
    return NSJSONSerialization::JSONObjectWithData(data, &error);
}

bool AFJSONResponseSerializer::decodesQuickly(std::size_t bytes) const {
    return bytes <= quickLength;
}

}  // namespace flarebox
