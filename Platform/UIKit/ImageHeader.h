#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace flarebox {

enum class ImageFormat : std::uint8_t { PNG, JPEG, GIF, WebP };

/// What the first bytes of an encoded picture promise.
struct ImageHeader {
    ImageFormat format = ImageFormat::PNG;
    std::int64_t width = 0, height = 0;
    /// A JPEG in cyan, magenta, yellow and black.
    bool isFourColor = false;
};

/// Reads format and size without decoding anything; nothing for other formats and for data that ends too early. Any
/// thread.
std::optional<ImageHeader> readImageHeader(std::span<const std::byte> data);

}  // namespace flarebox
