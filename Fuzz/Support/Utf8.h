#pragma once

#include <cstddef>
#include <string_view>

namespace flarebox::fuzz {

/// RFC 3629, by its table.
inline bool isUtf8(std::string_view text) {
    const auto at = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const auto isBetween = [&](std::size_t i, unsigned low, unsigned high) { return at(i) >= low && at(i) <= high; };
    for (std::size_t i = 0; i < text.size();) {
        const unsigned first = at(i);
        const std::size_t length = first < 0x80   ? 1
                                   : first < 0xC2 ? 0
                                   : first < 0xE0 ? 2
                                   : first < 0xF0 ? 3
                                   : first < 0xF5 ? 4
                                                  : 0;
        if (length == 0 || i + length > text.size()) return false;
        const unsigned low = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
        const unsigned high = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
        if (length > 1 && !isBetween(i + 1, low, high)) return false;
        for (std::size_t more = 2; more < length; ++more) {
            if (!isBetween(i + more, 0x80, 0xBF)) return false;
        }
        i += length;
    }
    return true;
}

}  // namespace flarebox::fuzz
