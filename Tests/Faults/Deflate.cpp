#include <Tests/Faults/Deflate.h>

#include <algorithm>

namespace flarebox::testing {
namespace {

/// Writes one block of the deflate format with its fixed codes, which is all that a long run of one byte needs.
class DeflateBlock {
public:
    DeflateBlock() {
        put(1, 1);
        put(1, 2);
    }
    void addByte(char byte) {
        const auto value = static_cast<std::uint32_t>(static_cast<unsigned char>(byte));
        if (value < 144)
            putCode(0x30 + value, 8);
        else
            putCode(0x190 + value - 144, 9);
    }
    /// The byte before, `count` times more.
    void repeat(std::size_t count) {
        for (; count >= 258; count -= 258) {
            putCode(0xC5, 8);
            putCode(0, 5);
        }
    }
    std::string take() {
        putCode(0, 7);
        put(0, 7);
        return std::move(bytes_);
    }

private:
    /// Numbers go from their lowest bit on, codes from their highest.
    void put(std::uint32_t value, int bits) {
        for (int i = 0; i < bits; ++i) putBit(value >> i & 1);
    }
    void putCode(std::uint32_t code, int bits) {
        for (int i = bits; i > 0; --i) putBit(code >> (i - 1) & 1);
    }
    void putBit(std::uint32_t bit) {
        if (filled_ == 0) bytes_ += '\0';
        bytes_.back() =
            static_cast<char>(static_cast<std::uint32_t>(static_cast<unsigned char>(bytes_.back())) | bit << filled_);
        filled_ = (filled_ + 1) % 8;
    }

    std::string bytes_;
    int filled_ = 0;
};

std::string deflated(std::string_view start, char byte, std::size_t count) {
    DeflateBlock block;
    for (const char each : start) block.addByte(each);
    if (count > 0) block.addByte(byte);
    // Lengths below 258 would need further codes: these bytes are written one by one.
    for (std::size_t left = count > 0 ? (count - 1) % 258 : 0; left > 0; --left) block.addByte(byte);
    block.repeat(count > 0 ? (count - 1) / 258 * 258 : 0);
    return block.take();
}

std::string bigEndian(std::uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 255);
    return bytes;
}

std::uint32_t checksum(std::string_view bytes) {
    std::uint32_t sum = ~std::uint32_t{0};
    for (const char byte : bytes) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ (sum & 1 ? 0xEDB88320 : 0);
    }
    return ~sum;
}

std::string chunk(const std::string& name, const std::string& data) {
    return bigEndian(static_cast<std::uint32_t>(data.size())) + name + data + bigEndian(checksum(name + data));
}

}  // namespace

std::string gzipOfRun(std::string_view start, char byte, std::size_t count) {
    // The sums at its end are wrong, which nobody learns who does not read as far as that.
    return std::string("\x1F\x8B\x08\0\0\0\0\0\0\x03", 10) + deflated(start, byte, count) + std::string(8, '\0');
}

std::string emptyPNG(std::uint32_t width, std::uint32_t height) {
    const std::size_t length = (std::size_t{width} * 4 + 1) * height;
    // Of nothing but zeros the second half of the sum is their number.
    const auto sum = static_cast<std::uint32_t>(length % 65521) << 16 | 1;
    return std::string("\x89PNG\r\n\x1A\n") +
           chunk("IHDR", bigEndian(width) + bigEndian(height) + std::string("\x08\x06\0\0\0", 5)) +
           chunk("IDAT", "\x78\x01" + deflated({}, '\0', length) + bigEndian(sum)) + chunk("IEND", {});
}

}  // namespace flarebox::testing
