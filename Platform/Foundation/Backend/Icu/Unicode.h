#pragma once

#include <string>
#include <string_view>

namespace flarebox::detail {

/// Whether the bytes are well-formed UTF-8. Any thread.
bool isValidUTF8(std::string_view text);
/// The bytes of a code point; empty for a number that is none.
std::string encodeUTF8(char32_t codePoint);

/// The user's locale as the process was started with it, "de_DE" for example; "en_US" where none was chosen. Any
/// thread.
std::string currentLocaleIdentifier();

}  // namespace flarebox::detail
