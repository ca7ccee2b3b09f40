#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace flarebox {

/// Writes premultiplied 0xAARRGGBB pixels, rows from the top without gaps. False, with the reason in the log, when
/// the file cannot be written.
bool writePNG(const std::string& path, std::span<const std::uint32_t> pixels, int width, int height);

}  // namespace flarebox
