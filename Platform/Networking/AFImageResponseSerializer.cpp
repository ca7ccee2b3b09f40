#include <Networking/AFImageResponseSerializer.h>

namespace flarebox {

const ClassInfo& AFImageResponseSerializer::staticClass() {
    static const ClassInfo info("AFImageResponseSerializer", &AFHTTPResponseSerializer::staticClass(), nullptr);
    return info;
}

AFImageResponseSerializer::AFImageResponseSerializer() {
    setAcceptableContentTypes({"image/*"});
}

Ref<AFImageResponseSerializer> AFImageResponseSerializer::serializer() {
    return make<AFImageResponseSerializer>();
}

Value AFImageResponseSerializer::responseObjectForResponse(const NSHTTPURLResponse& response, const NSData& data,
                                                           Ref<NSError>& error) const {
    error = validateResponse(response, data);
    if (error || data.length() == 0) return {};
    Ref<UIImage> image = UIImage::imageWithData(data, &error, room_);
    return image ? Value(image) : Value();
}

bool AFImageResponseSerializer::decodesQuickly(std::size_t) const {
    return false;
}

}  // namespace flarebox
