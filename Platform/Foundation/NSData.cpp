#include <Foundation/Storage.h>
#include <Foundation/Values.h>

#include <array>

namespace flarebox {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::int8_t outside = -1;

constexpr auto sextets = [] {
    std::array<std::int8_t, 256> table{};
    table.fill(outside);
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        table[static_cast<unsigned char>(alphabet[i])] = static_cast<std::int8_t>(i);
    }
    return table;
}();

std::optional<std::string> decodeBase64(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t bits = 0;
    int digits = 0;
    int padding = 0;
    for (char c : text) {
        if (c == '=') {
            ++padding;
            continue;
        }
        const std::int8_t sextet = sextets[static_cast<unsigned char>(c)];
        if (sextet == outside) continue;
        if (padding > 0) return std::nullopt;
        bits = bits << 6 | static_cast<std::uint32_t>(sextet);
        if (++digits < 4) continue;
        for (int shift : {16, 8, 0}) bytes += static_cast<char>(bits >> shift);
        digits = 0;
        bits = 0;
    }
    // The last group stands for one or two bytes, and padding makes four characters of it.
    if (digits == 0) return padding == 0 ? std::optional(std::move(bytes)) : std::nullopt;
    if (digits == 1 || digits + padding != 4) return std::nullopt;
    bits <<= 6 * padding;
    bytes += static_cast<char>(bits >> 16);
    if (digits == 3) bytes += static_cast<char>(bits >> 8);
    return bytes;
}

}  // namespace

NSData NSData::dataWithBytes(std::span<const std::byte> bytes) {
    return dataWithBytes(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

NSData NSData::dataWithBytes(std::string_view bytes) {
    return dataWithString(std::string(bytes));
}

NSData NSData::dataWithString(std::string&& bytes) {
    auto storage = std::make_unique<detail::DataStorage>(std::move(bytes));
    return NSData(detail::ValueAccess::adopt(Kind::Data, storage.release()), Checked{});
}

NSData NSData::dataWithBase64EncodedString(const NSString& text) {
    if (!text) return {};
    auto bytes = decodeBase64(text.text());
    return bytes ? dataWithString(std::move(*bytes)) : NSData();
}

std::string_view NSData::text() const noexcept {
    return *this ? std::string_view(detail::ValueAccess::storage<detail::DataStorage>(*this).bytes())
                 : std::string_view();
}

std::span<const std::byte> NSData::bytes() const noexcept {
    return std::as_bytes(std::span(text()));
}

std::string NSData::base64EncodedString() const {
    const std::string_view bytes = text();
    std::string result;
    result.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            bits = bits << 8 | (i < count ? static_cast<unsigned char>(bytes[at + i]) : 0u);
        }
        for (std::size_t i = 0; i < 4; ++i) result += i <= count ? alphabet[bits >> (18 - 6 * i) & 63] : '=';
    }
    return result;
}

}  // namespace flarebox
