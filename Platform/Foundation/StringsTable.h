#pragma once

#include <map>
#include <string>
#include <string_view>

namespace flarebox::detail {

using StringsTable = std::map<std::string, std::string, std::less<>>;

/// Reads the platform's table of texts: `"key" = "value";` with comments of both kinds, backslash escapes and \Uxxxx.
/// What stands before the first mistake is kept; `failure` then tells the line, and is empty otherwise.
StringsTable parseStringsTable(std::string_view text, std::string& failure);

}  // namespace flarebox::detail
