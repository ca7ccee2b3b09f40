#pragma once

#include <Foundation/Values.h>

#include <string>
#include <string_view>

namespace flarebox::detail {

struct JSONDecoding {
    /// Absent on failure.
    Value value;
    /// Why and, if known, where; empty on success.
    std::string failure;
};

/// A document to decode and how many bytes behind it may be read, whatever they are.
struct JSONSource {
    std::string_view text;
    std::size_t readableBehind = 0;
};

/// Decodes one document of any kind. Parsers are kept for reuse, one a thread.
JSONDecoding decodeJSON(JSONSource source, bool allowFragments, int maximumDepth);

bool isWellFormedUTF8(std::string_view text) noexcept;

}  // namespace flarebox::detail
