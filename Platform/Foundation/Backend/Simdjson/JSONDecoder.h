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

/// Decodes one document of any kind. Parsers are kept for reuse, one a thread.
JSONDecoding decodeJSON(std::string_view text, bool allowFragments, int maximumDepth);

bool isWellFormedUTF8(std::string_view text) noexcept;

}  // namespace flarebox::detail
