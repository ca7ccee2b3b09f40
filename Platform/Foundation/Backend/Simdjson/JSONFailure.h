#pragma once

#include <simdjson.h>

#include <string>
#include <string_view>

namespace flarebox::detail {

/// A text for people: why the document was refused and, if it can be told, at which line and column.
std::string describeJSONFailure(simdjson::error_code error, std::string_view document, int maximumDepth);

}  // namespace flarebox::detail
