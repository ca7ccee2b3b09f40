#pragma once

#include "GameProcess.h"

#include <Foundation/Values.h>

#include <string>
#include <string_view>

namespace flarebox::testing {

/// What a script wrote with `dump`.
class State {
public:
    State(const TemporaryDirectory& folder, const std::string& file);

    /// The value at a path such as "views.btnOpen.visible", as JSON; "nothing" where there is none. "#" at the end
    /// counts the elements.
    std::string json(std::string_view path) const;
    double number(std::string_view path) const;
    /// One of a view's frame: 0 x, 1 y, 2 width, 3 height.
    double frame(const std::string& field, std::size_t index) const;
    /// Closed is minus the tab's width, open is 0.
    double leading() const { return number("views.constraintLeadingContentView.constant"); }
    double tabWidth() const { return number("views.widthFixedConstraint.constant"); }

private:
    Value at(std::string_view path) const;
    NSDictionary root_;
};

}  // namespace flarebox::testing
