#include <Foundation/Hash.h>

#include <cstring>
#include <random>

namespace flarebox::detail {
namespace {

std::uint64_t seed() noexcept {
    static const std::uint64_t value = [] {
        std::random_device device;
        return (std::uint64_t{device()} << 32) ^ device() ^ 0x9e3779b97f4a7c15u;
    }();
    return value;
}

/// Folds the 128-bit product: every bit of both factors reaches every bit of the result.
std::uint64_t mix(std::uint64_t a, std::uint64_t b) noexcept {
#ifdef __SIZEOF_INT128__
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
#else
    // By halves, as on paper.
    constexpr std::uint64_t low = 0xFFFFFFFF;
    const std::uint64_t crossed = (a >> 32) * (b & low) + ((a & low) * (b & low) >> 32);
    const std::uint64_t carried = (a & low) * (b >> 32) + (crossed & low);
    return (a * b) ^ ((a >> 32) * (b >> 32) + (crossed >> 32) + (carried >> 32));
#endif
}

template <class Word>
std::uint64_t load(const char* at) noexcept {
    Word word;
    std::memcpy(&word, at, sizeof word);
    return word;
}

constexpr std::uint64_t oddA = 0xa0761d6478bd642fu;
constexpr std::uint64_t oddB = 0xe7037ed1a0b428dbu;

}  // namespace

std::size_t hashInteger(std::uint64_t bits) noexcept {
    return static_cast<std::size_t>(mix(bits ^ oddA, seed() ^ oddB));
}

std::size_t hashText(std::string_view text) noexcept {
    const char* at = text.data();
    std::size_t left = text.size();
    std::uint64_t state = seed() ^ mix(left ^ oddA, oddB);
    for (; left > 16; at += 16, left -= 16) {
        state = mix(load<std::uint64_t>(at) ^ oddA ^ state, load<std::uint64_t>(at + 8) ^ oddB);
    }
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    if (left >= 8) {
        first = load<std::uint64_t>(at);
        last = load<std::uint64_t>(at + left - 8);
    } else if (left >= 4) {
        first = load<std::uint32_t>(at);
        last = load<std::uint32_t>(at + left - 4);
    } else if (left > 0) {
        first =
            load<std::uint8_t>(at) | load<std::uint8_t>(at + left / 2) << 8 | load<std::uint8_t>(at + left - 1) << 16;
    }
    return static_cast<std::size_t>(mix(first ^ oddA ^ state, last ^ oddB ^ seed()));
}

}  // namespace flarebox::detail
