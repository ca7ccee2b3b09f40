#include <Foundation/NSUUID.h>
#include <Foundation/System.h>

#include <charconv>

namespace flarebox {

namespace {

constexpr std::size_t textLength = 36;

/// Where the hexadecimal digits of a byte stand in the text: four hyphens lie between.
constexpr std::size_t offsetOfByte(std::size_t index) {
    return 2 * index + (index >= 4) + (index >= 6) + (index >= 8) + (index >= 10);
}

}  // namespace

std::optional<NSUUID> NSUUID::UUID() {
    NSUUID result;
    if (!system::fillWithRandomBytes(result.bytes_)) return std::nullopt;
    result.bytes_[6] = static_cast<std::uint8_t>((result.bytes_[6] & 0x0F) | 0x40);  // version 4
    result.bytes_[8] = static_cast<std::uint8_t>((result.bytes_[8] & 0x3F) | 0x80);  // the RFC's variant
    return result;
}

std::optional<NSUUID> NSUUID::UUIDWithString(std::string_view text) {
    if (text.size() != textLength) return std::nullopt;
    for (std::size_t hyphen : {8, 13, 18, 23}) {
        if (text[hyphen] != '-') return std::nullopt;
    }
    NSUUID result;
    for (std::size_t index = 0; index < result.bytes_.size(); ++index) {
        const char* digits = text.data() + offsetOfByte(index);
        auto [end, failure] = std::from_chars(digits, digits + 2, result.bytes_[index], 16);
        if (failure != std::errc() || end != digits + 2) return std::nullopt;
    }
    return result;
}

std::string NSUUID::UUIDString() const {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text(textLength, '-');
    for (std::size_t index = 0; index < bytes_.size(); ++index) {
        text[offsetOfByte(index)] = digits[bytes_[index] >> 4];
        text[offsetOfByte(index) + 1] = digits[bytes_[index] & 15];
    }
    return text;
}

}  // namespace flarebox
