#include <Foundation/Backend/Icu/Unicode.h>

#include <unicode/uloc.h>
#include <unicode/utf8.h>
#include <cstdint>

namespace flarebox::detail {

bool isValidUTF8(std::string_view text) {
    // The library's indexes are 32 bits wide; longer texts are not ours.
    if (text.size() > INT32_MAX) return false;
    const auto length = static_cast<std::int32_t>(text.size());
    std::int32_t index = 0;
    while (index < length) {
        UChar32 character;
        U8_NEXT(text.data(), index, length, character);
        if (character < 0) return false;
    }
    return true;
}

std::string encodeUTF8(char32_t codePoint) {
    char bytes[U8_MAX_LENGTH];
    std::int32_t length = 0;
    UBool failed = false;
    U8_APPEND(bytes, length, U8_MAX_LENGTH, static_cast<UChar32>(codePoint), failed);
    return failed ? std::string() : std::string(bytes, static_cast<std::size_t>(length));
}

std::string currentLocaleIdentifier() {
    std::string identifier = uloc_getDefault();
    // What the library makes of "C": not a place where anybody groups digits.
    return identifier == "en_US_POSIX" ? "en_US" : identifier;
}

}  // namespace flarebox::detail
