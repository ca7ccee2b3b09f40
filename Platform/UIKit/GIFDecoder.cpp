#include <UIKit/GIFDecoder.h>

#include <UIKit/ByteReader.h>

#include <array>
#include <optional>
#include <vector>

namespace flarebox {
namespace {

constexpr std::uint32_t opaque = 0xFF000000;

using Palette = std::array<std::uint32_t, 256>;

/// The table that the flags announce, or nothing when they announce none.
std::optional<Palette> readPalette(ByteReader& bytes, std::uint32_t flags) {
    if (!(flags & 0x80)) return std::nullopt;
    Palette palette;
    palette.fill(opaque);
    const std::size_t count = std::size_t{2} << (flags & 7);
    for (std::size_t i = 0; i < count; ++i) palette[i] = opaque | bytes.bigEndian(3);
    return palette;
}

/// The codes of a frame, least significant bits first, cut into blocks of at most 255 bytes.
class CodeReader {
public:
    explicit CodeReader(ByteReader& bytes) : bytes_(bytes) {}

    /// -1 after the last.
    int next(int width) {
        while (bitCount_ < width) {
            if (blockLeft_ == 0) blockLeft_ = bytes_.byte();
            if (blockLeft_ == 0 || !bytes_.ok()) return -1;
            bits_ |= bytes_.byte() << bitCount_;
            bitCount_ += 8;
            --blockLeft_;
        }
        const auto code = static_cast<int>(bits_ & ((1U << width) - 1));
        bits_ >>= width;
        bitCount_ -= width;
        return code;
    }

private:
    ByteReader& bytes_;
    std::uint32_t bits_ = 0, blockLeft_ = 0;
    int bitCount_ = 0;
};

/// Unpacks runs of palette indices. Each code stands for an earlier one followed by one more index.
class Unpacker {
public:
    Unpacker(ByteReader& bytes, int rootWidth) : codes_(bytes), clear_(1 << rootWidth), rootWidth_(rootWidth) {
        reset();
    }

    /// Appends until there are `count` indices; false when they end before.
    bool unpack(std::size_t count, std::vector<std::uint8_t>& indices) {
        while (indices.size() < count) {
            const int code = codes_.next(width_);
            if (code == clear_) {
                reset();
                continue;
            }
            if (code < 0 || code == clear_ + 1 || !append(code, indices)) return false;
        }
        indices.resize(count);
        return true;
    }

private:
    static constexpr int tableSize = 4096;
    struct Entry {
        std::int16_t before = -1;
        std::uint8_t last = 0;
        std::uint16_t length = 1;
    };

    void reset() {
        width_ = rootWidth_ + 1;
        next_ = clear_ + 2;
        previous_ = -1;
        for (int i = 0; i < clear_; ++i) entry(i) = {-1, static_cast<std::uint8_t>(i), 1};
    }

    bool append(int code, std::vector<std::uint8_t>& indices) {
        // A code may be used in the moment in which it is defined, but no earlier.
        const bool isBeingDefined = code == next_ && previous_ >= 0 && next_ < tableSize;
        if (code > next_ || (code == next_ && !isBeingDefined) || (code >= clear_ && previous_ < 0)) return false;
        if (previous_ >= 0 && next_ < tableSize) {
            const int source = isBeingDefined ? previous_ : code;
            entry(next_) = {static_cast<std::int16_t>(previous_), firstOf(source),
                            static_cast<std::uint16_t>(entry(previous_).length + 1)};
            ++next_;
            if (next_ == 1 << width_ && width_ < 12) ++width_;
        }
        write(code, indices);
        previous_ = code;
        return true;
    }

    void write(int code, std::vector<std::uint8_t>& indices) {
        std::size_t at = indices.size() + entry(code).length;
        indices.resize(at);
        for (; code >= 0; code = entry(code).before) indices[--at] = entry(code).last;
    }

    std::uint8_t firstOf(int code) {
        while (entry(code).before >= 0) code = entry(code).before;
        return entry(code).last;
    }
    Entry& entry(int code) { return table_[static_cast<std::size_t>(code)]; }

    CodeReader codes_;
    int clear_, rootWidth_;
    int width_ = 0, next_ = 0, previous_ = -1;
    std::array<Entry, tableSize> table_;
};

struct Frame {
    std::size_t left = 0, top = 0, width = 0, height = 0;
    bool interlaced = false;
    Palette palette{};
    std::vector<std::uint8_t> indices;
};

/// The row of the frame in which the n-th row of the data belongs.
std::vector<std::size_t> rowOrder(const Frame& frame) {
    struct Pass {
        std::size_t first, step;
    };
    constexpr std::array passes = {Pass{0, 8}, Pass{4, 8}, Pass{2, 4}, Pass{1, 2}};
    std::vector<std::size_t> order;
    if (frame.interlaced)
        for (const Pass pass : passes)
            for (std::size_t y = pass.first; y < frame.height; y += pass.step) order.push_back(y);
    else
        for (std::size_t y = 0; y < frame.height; ++y) order.push_back(y);
    return order;
}

/// From behind the mark of an image to the end of its data.
std::optional<Frame> readFrame(ByteReader& bytes, const std::optional<Palette>& sharedPalette, int transparentIndex) {
    Frame frame;
    frame.left = bytes.littleEndian(2);
    frame.top = bytes.littleEndian(2);
    frame.width = bytes.littleEndian(2);
    frame.height = bytes.littleEndian(2);
    const std::uint32_t flags = bytes.byte();
    frame.interlaced = flags & 0x40;
    const auto ownPalette = readPalette(bytes, flags);
    if (!ownPalette && !sharedPalette) return std::nullopt;
    frame.palette = ownPalette ? *ownPalette : *sharedPalette;
    if (transparentIndex >= 0) frame.palette[static_cast<std::size_t>(transparentIndex)] = 0;
    const auto rootWidth = static_cast<int>(bytes.byte());
    if (!bytes.ok() || rootWidth < 1 || rootWidth > 8) return std::nullopt;
    if (!Unpacker(bytes, rootWidth).unpack(frame.width * frame.height, frame.indices)) return std::nullopt;
    return frame;
}

/// The index that the extension makes transparent, or the one that was before it.
int readExtension(ByteReader& bytes, int transparentIndex) {
    const bool isGraphicControl = bytes.byte() == 0xF9;
    std::uint32_t length = bytes.byte();
    if (isGraphicControl && length == 4) {
        const std::uint32_t flags = bytes.byte();
        bytes.skip(2);
        const auto index = static_cast<int>(bytes.byte());
        transparentIndex = flags & 1 ? index : -1;
        length = bytes.byte();
    }
    for (; length > 0 && bytes.ok(); length = bytes.byte()) bytes.skip(length);
    return transparentIndex;
}

Ref<UIImage> onScreen(const Frame& frame, std::size_t screenWidth, std::size_t screenHeight) {
    const std::size_t width = std::max(screenWidth, frame.width), height = std::max(screenHeight, frame.height);
    std::vector<std::uint32_t> pixels(width * height);
    const auto order = rowOrder(frame);
    for (std::size_t row = 0; row < order.size(); ++row) {
        const std::size_t y = frame.top + order[row];
        for (std::size_t x = 0; y < height && x < frame.width && frame.left + x < width; ++x)
            pixels[y * width + frame.left + x] = frame.palette[frame.indices[row * frame.width + x]];
    }
    return UIImage::imageWithPixels(static_cast<int>(width), static_cast<int>(height), std::move(pixels));
}

}  // namespace

Ref<UIImage> decodeGIF(std::span<const std::byte> data) {
    ByteReader bytes(data);
    bytes.skip(6);
    const std::size_t screenWidth = bytes.littleEndian(2), screenHeight = bytes.littleEndian(2);
    const std::uint32_t flags = bytes.byte();
    bytes.skip(2);
    const auto palette = readPalette(bytes, flags);
    int transparentIndex = -1;
    while (bytes.ok()) {
        const std::uint32_t block = bytes.byte();
        if (block == 0x21) {
            transparentIndex = readExtension(bytes, transparentIndex);
            continue;
        }
        if (block != 0x2C) break;
        const auto frame = readFrame(bytes, palette, transparentIndex);
        return frame ? onScreen(*frame, screenWidth, screenHeight) : nullptr;
    }
    return nullptr;
}

}  // namespace flarebox
