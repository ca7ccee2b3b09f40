#pragma once

#include <compare>
#include <cstddef>

namespace flarebox {

/// The place of an item in a list: first by section, then by row.
struct NSIndexPath {
    std::size_t section = 0;
    std::size_t row = 0;
    friend auto operator<=>(const NSIndexPath&, const NSIndexPath&) = default;
};

}  // namespace flarebox
