#include <UIKit/ImageHeader.h>

#include <UIKit/ByteReader.h>

#include <algorithm>

namespace flarebox {
namespace {

using Header = std::optional<ImageHeader>;

Header checked(const ByteReader& bytes, ImageHeader header) {
    if (!bytes.ok() || header.width < 1 || header.height < 1) return std::nullopt;
    return header;
}

Header readPNG(ByteReader bytes) {
    if (!bytes.hasTextAt(12, "IHDR")) return std::nullopt;
    bytes.skip(16);
    const std::int64_t width = bytes.bigEndian(4), height = bytes.bigEndian(4);
    return checked(bytes, {ImageFormat::PNG, width, height});
}

bool isStartOfFrame(std::uint32_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

Header readJPEG(ByteReader bytes) {
    bytes.skip(2);
    while (bytes.ok()) {
        if (bytes.byte() != 0xFF) continue;
        std::uint32_t marker = 0xFF;
        while (marker == 0xFF && bytes.ok()) marker = bytes.byte();
        const bool standsAlone = marker == 0 || marker == 1 || (marker >= 0xD0 && marker <= 0xD8);
        if (standsAlone) continue;
        const std::uint32_t length = bytes.bigEndian(2);
        if (isStartOfFrame(marker)) {
            bytes.skip(1);
            const std::int64_t height = bytes.bigEndian(2), width = bytes.bigEndian(2);
            return checked(bytes, {ImageFormat::JPEG, width, height, bytes.byte() == 4});
        }
        if (length < 2) return std::nullopt;
        bytes.skip(length - 2);
    }
    return std::nullopt;
}

void skipColorTable(ByteReader& bytes, std::uint32_t flags) {
    if (flags & 0x80) bytes.skip(std::size_t{3} << ((flags & 7) + 1));
}

Header readGIF(ByteReader bytes) {
    bytes.skip(6);
    const std::int64_t screenWidth = bytes.littleEndian(2), screenHeight = bytes.littleEndian(2);
    const std::uint32_t flags = bytes.byte();
    bytes.skip(2);
    skipColorTable(bytes, flags);
    while (bytes.ok()) {
        const std::uint32_t block = bytes.byte();
        if (block == 0x2C) {
            bytes.skip(4);
            // The frame's own size is what gets allocated, whatever the screen's size claims.
            const std::int64_t width = bytes.littleEndian(2), height = bytes.littleEndian(2);
            return checked(bytes, {ImageFormat::GIF, std::max(width, screenWidth), std::max(height, screenHeight)});
        }
        if (block != 0x21) return std::nullopt;
        bytes.skip(1);
        for (std::uint32_t length = bytes.byte(); length && bytes.ok(); length = bytes.byte()) bytes.skip(length);
    }
    return std::nullopt;
}

Header readWebP(ByteReader bytes) {
    if (bytes.hasTextAt(12, "VP8X")) {
        bytes.skip(24);
        const std::int64_t width = bytes.littleEndian(3) + 1, height = bytes.littleEndian(3) + 1;
        return checked(bytes, {ImageFormat::WebP, width, height});
    }
    if (bytes.hasTextAt(12, "VP8L")) {
        bytes.skip(21);
        const std::uint32_t bits = bytes.littleEndian(4);
        return checked(bytes, {ImageFormat::WebP, (bits & 0x3FFF) + 1, (bits >> 14 & 0x3FFF) + 1});
    }
    if (bytes.hasTextAt(12, "VP8 ")) {
        bytes.skip(26);
        const std::int64_t width = bytes.littleEndian(2) & 0x3FFF, height = bytes.littleEndian(2) & 0x3FFF;
        return checked(bytes, {ImageFormat::WebP, width, height});
    }
    return std::nullopt;
}

}  // namespace

std::optional<ImageHeader> readImageHeader(std::span<const std::byte> data) {
    const ByteReader bytes(data);
    if (bytes.hasTextAt(0, "\x89PNG\r\n\x1A\n")) return readPNG(bytes);
    if (bytes.hasTextAt(0, "\xFF\xD8\xFF")) return readJPEG(bytes);
    if (bytes.hasTextAt(0, "GIF87a") || bytes.hasTextAt(0, "GIF89a")) return readGIF(bytes);
    if (bytes.hasTextAt(0, "RIFF") && bytes.hasTextAt(8, "WEBP")) return readWebP(bytes);
    return std::nullopt;
}

}  // namespace flarebox
