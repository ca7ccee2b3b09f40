#pragma once

#include <span>
#include <string>
#include <string_view>

namespace flarebox::layout {

/// The text as messages show it.
std::string inQuotes(std::string_view text);

/// The end of a message about a word that is not known: "; did you mean "accent"?" where one of the known words is much
/// like it, or "; known are "text", "title"". Empty where there are none.
std::string suggestionFor(std::string_view word, std::span<const std::string_view> known);

}  // namespace flarebox::layout
