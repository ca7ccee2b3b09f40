#pragma once

#include <unicode/ustring.h>
#include <optional>
#include <string>
#include <string_view>

namespace flarebox::detail {

/// The text in the library's own form; none when it is not UTF-8 or unreasonably long.
inline std::optional<std::u16string> toUTF16(std::string_view text) {
    constexpr std::size_t longest = 1 << 20;
    if (text.size() > longest) return std::nullopt;
    std::u16string result(text.size(), u'\0');  // never needs more units than bytes
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(result.data(), static_cast<std::int32_t>(result.size()), &length, text.data(),
                  static_cast<std::int32_t>(text.size()), &status);
    if (U_FAILURE(status)) return std::nullopt;
    result.resize(static_cast<std::size_t>(length));
    return result;
}

inline std::string toUTF8(std::u16string_view text) {
    std::string result(text.size() * 3, '\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(result.data(), static_cast<std::int32_t>(result.size()), &length, text.data(),
                       static_cast<std::int32_t>(text.size()), 0xFFFD, nullptr, &status);
    result.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(length));
    return result;
}

/// What a formatting call of the library writes, however long. `write` takes buffer, capacity and status and returns
/// the length.
template <class Write>
std::u16string collect(Write write) {
    std::u16string result(64, u'\0');
    for (int attempt = 0; attempt < 2; ++attempt) {
        UErrorCode status = U_ZERO_ERROR;
        std::int32_t length = write(result.data(), static_cast<std::int32_t>(result.size()), status);
        if (status == U_BUFFER_OVERFLOW_ERROR) {
            result.resize(static_cast<std::size_t>(length));
            continue;
        }
        if (U_FAILURE(status)) break;
        result.resize(static_cast<std::size_t>(length));
        return result;
    }
    return {};
}

}  // namespace flarebox::detail
