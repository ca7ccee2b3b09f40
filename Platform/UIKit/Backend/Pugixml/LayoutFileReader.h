#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox {

/// One element of a layout file as it is written, with the line it begins on.
struct LayoutElement {
    struct Attribute {
        std::string name, value;
    };
    std::string name;
    int line = 1;
    std::vector<Attribute> attributes;
    /// The text between the tags, without blanks at its ends.
    std::string text;
    std::vector<LayoutElement> children;

    /// Null when there is none of that name.
    const std::string* attribute(std::string_view name) const;
};

/// A place in a layout file and what is wrong there.
struct LayoutProblem {
    int line = 0;
    std::string text;
};

/// The document's outermost element; nothing, with the problem told, when the text is not well-formed XML or nested too
/// deeply. Entities other than XML's own are not resolved, and nothing else is ever read.
std::optional<LayoutElement> readLayoutFile(std::string_view text, LayoutProblem& problem);

}  // namespace flarebox
