#pragma once

#include <cmath>
#include <cstdint>

namespace flarebox::hostgame {

/// 0 to below 1, the same for the same numbers on every machine.
inline double noise(std::int64_t index, std::uint32_t seed) {
    auto bits = static_cast<std::uint64_t>(index) * 0x9E3779B97F4A7C15U + seed * 0xD1B54A32D192ED03U;
    bits ^= bits >> 31;
    bits *= 0xBF58476D1CE4E5B9U;
    bits ^= bits >> 29;
    bits *= 0x94D049BB133111EBU;
    bits ^= bits >> 32;
    return static_cast<double>(bits >> 11) * 0x1p-53;
}

/// The same, running smoothly from one whole number to the next.
inline double smoothNoise(double x, std::uint32_t seed) {
    const double whole = std::floor(x), part = x - whole;
    const auto index = static_cast<std::int64_t>(whole);
    const double share = part * part * (3 - 2 * part);
    return noise(index, seed) * (1 - share) + noise(index + 1, seed) * share;
}

}  // namespace flarebox::hostgame
