#pragma once

#include <UIKit/Geometry.h>

#include <cstdint>

namespace flarebox {

enum class UIViewContentMode : std::uint8_t { ScaleToFill, ScaleAspectFit, ScaleAspectFill };
/// Where a picture of that size goes in an area: beyond it where the mode fills the area and keeps the proportions.
CGRect placedByContentMode(CGSize picture, const CGRect& area, UIViewContentMode mode);

}  // namespace flarebox
