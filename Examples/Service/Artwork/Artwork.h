#pragma once

#include <string>
#include <string_view>

namespace flarebox::examples {

enum class PictureKind {
    Icon,   ///< 256 x 256 pixels, made to be shown in a circle
    Image,  ///< 1080 x 790 pixels
};

/// Draws a product of the catalogue in the studio and returns the PNG file; empty for an unknown name. Takes some
/// ten milliseconds; safe on any thread.
std::string drawPicture(std::string_view product, PictureKind kind);

}  // namespace flarebox::examples
