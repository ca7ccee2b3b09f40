#include <Foundation/Backend/Simdjson/JSONDecoder.h>
#include <Foundation/JSONWriter.h>
#include <Foundation/NSJSONSerialization.h>
#include <Foundation/Storage.h>

namespace flarebox {
namespace {

Ref<NSError> corruptError(const std::string& reason) {
    return NSError::errorWithDomain(NSCocoaErrorDomain, NSPropertyListReadCorruptError, reason);
}

Value decoded(detail::JSONSource source, NSJSONReadingOptions options, Ref<NSError>* error) {
    constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
    if (source.text.starts_with(byteOrderMark)) source.text.remove_prefix(byteOrderMark.size());
    const bool allowFragments = (options & NSJSONReadingAllowFragments) != 0;
    detail::JSONDecoding decoding = detail::decodeJSON(source, allowFragments, NSJSONSerialization::maximumDepth);
    if (!decoding.value && error) {
        *error =
            corruptError("The data couldn’t be read because it isn’t in the correct format: " + decoding.failure + ".");
    }
    return std::move(decoding.value);
}

}  // namespace

Value NSJSONSerialization::JSONObjectWithText(std::string_view text, NSJSONReadingOptions options,
                                              Ref<NSError>* error) {
    return decoded({text}, options, error);
}

Value NSJSONSerialization::JSONObjectWithData(const NSData& data, NSJSONReadingOptions options, Ref<NSError>* error) {
    return decoded({data.text(), detail::ValueAccess::readableBehind(data)}, options, error);
}

Value NSJSONSerialization::JSONObjectWithData(const NSData& data, Ref<NSError>* error) {
    return JSONObjectWithData(data, NSJSONReadingStrict, error);
}

bool NSJSONSerialization::writeJSONObject(const Value& value, std::string& text, NSJSONWritingOptions options,
                                          Ref<NSError>* error) {
    const std::size_t start = text.size();
    const bool isCollection = value.kind() == Value::Kind::Array || value.kind() == Value::Kind::Dictionary;
    std::string failure = "the value is neither an array nor a dictionary";
    if (isCollection || (options & NSJSONWritingFragmentsAllowed) != 0) {
        detail::JSONWriter writer(text, maximumDepth);
        const bool isWritten = writer.write(value);
        writer.finish();
        if (isWritten) return true;
        failure = writer.failure();
    }
    text.resize(start);
    if (error) *error = corruptError("The data couldn’t be written as JSON: " + failure + ".");
    return false;
}

NSData NSJSONSerialization::dataWithJSONObject(const Value& value, NSJSONWritingOptions options, Ref<NSError>* error) {
    std::string text;
    if (!writeJSONObject(value, text, options, error)) return {};
    return NSData::dataWithString(std::move(text));
}

NSData NSJSONSerialization::dataWithJSONObject(const Value& value, Ref<NSError>* error) {
    return dataWithJSONObject(value, NSJSONWritingStrict, error);
}

}  // namespace flarebox
