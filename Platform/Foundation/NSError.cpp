#include <Foundation/NSError.h>

namespace flarebox {

const ClassInfo& NSError::staticClass() {
    static const ClassInfo info("NSError", &NSObject::staticClass(), nullptr);
    return info;
}

NSError::NSError(std::string domain, int code, NSDictionary userInfo)
    : domain_(std::move(domain)), code_(code), userInfo_(std::move(userInfo)) {}

Ref<NSError> NSError::errorWithDomain(std::string_view domain, int code, std::string_view localizedDescription) {
    return errorWithDomain(
        domain, code, NSDictionary{{NSString::stringWithConstant(NSLocalizedDescriptionKey), localizedDescription}});
}

Ref<NSError> NSError::errorWithDomain(std::string_view domain, int code, const NSDictionary& userInfo) {
    return make<NSError>(std::string(domain), code, userInfo);
}

std::string NSError::localizedDescription() const {
    const NSString text = userInfo_.objectForKey(NSLocalizedDescriptionKey).as<NSString>();
    if (text) return text.string();
    return "The operation couldn’t be completed. (" + domain_ + " error " + std::to_string(code_) + ".)";
}

std::string NSError::description() const {
    return "Error Domain=" + domain_ + " Code=" + std::to_string(code_) + " \"" + localizedDescription() + "\"";
}

}  // namespace flarebox
