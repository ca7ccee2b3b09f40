#pragma once

#include <UIKit/UIImage.h>

#include <cstddef>
#include <span>

namespace flarebox {

/// The first frame of a GIF whose header has been checked (UIKit/ImageHeader.h), placed on its screen; null when it is
/// damaged or cut off. Our own, because the reader of the picture library writes outside its memory on damaged files.
/// Any thread.
Ref<UIImage> decodeGIF(std::span<const std::byte> data);

}  // namespace flarebox
