#pragma once

#include <UIKit/NSLayoutConstraint.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox::layout {

/// A constraint as a layout file writes it: `strip.leading == content.trailing * 1 + 8`.
struct ConstraintExpression {
    struct Side {
        /// An id, "parent" or "self"; empty means self as well.
        std::string view;
        NSLayoutAttribute attribute = NSLayoutAttribute::NotAnAttribute;
    };
    Side first;
    NSLayoutRelation relation = NSLayoutRelation::Equal;
    /// Without an attribute when the first side is compared with the constant alone.
    Side second;
    CGFloat multiplier = 1, constant = 0;
};

/// Nothing, with the problem told in words, when the text is no constraint or compares what cannot be compared.
std::optional<ConstraintExpression> parseConstraint(std::string_view text, std::string& problem);

/// The constraints of a `pin` attribute, such as `top:8 leading trailing:12`.
std::optional<std::vector<ConstraintExpression>> parsePin(std::string_view text, std::string& problem);

}  // namespace flarebox::layout
