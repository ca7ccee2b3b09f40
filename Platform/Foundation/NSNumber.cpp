#include <Foundation/Storage.h>
#include <Foundation/Values.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace flarebox {
namespace {

template <class Integer>
Integer saturated(double number) noexcept {
    using Limits = std::numeric_limits<Integer>;
    if (number != number) return 0;
    if (number <= static_cast<double>(Limits::min())) return Limits::min();
    // The limit itself rounds up to the first number beyond the range.
    if (number >= static_cast<double>(Limits::max())) return Limits::max();
    return static_cast<Integer>(number);
}

}  // namespace

bool NSNumber::boolValue() const noexcept {
    if (!*this) return false;
    return isFloating() ? payload_.floating != 0 : payload_.bits != 0;
}

std::int64_t NSNumber::integerValue() const noexcept {
    if (!*this) return 0;
    if (isFloating()) return saturated<std::int64_t>(payload_.floating);
    if (isUnsigned() && payload_.integer < 0) return std::numeric_limits<std::int64_t>::max();
    return payload_.integer;
}

std::uint64_t NSNumber::unsignedIntegerValue() const noexcept {
    if (!*this) return 0;
    if (isFloating()) return saturated<std::uint64_t>(payload_.floating);
    return isUnsigned() ? payload_.bits : static_cast<std::uint64_t>(std::max<std::int64_t>(payload_.integer, 0));
}

double NSNumber::doubleValue() const noexcept {
    if (!*this) return 0;
    if (isFloating()) return payload_.floating;
    return isUnsigned() ? static_cast<double>(payload_.bits) : static_cast<double>(payload_.integer);
}

int NSNumber::intValue() const noexcept {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<std::int64_t>(integerValue(), Limits::min(), Limits::max()));
}

std::string NSNumber::stringValue() const {
    if (!*this) return {};
    char buffer[32];
    char* const end = buffer + sizeof buffer;
    // A power of ten only where the digits would be too many to read.
    const double magnitude = isFloating() ? std::fabs(payload_.floating) : 0;
    const bool isPlain = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e17);
    const auto result = isUnsigned()    ? std::to_chars(buffer, end, payload_.bits)
                        : !isFloating() ? std::to_chars(buffer, end, payload_.integer)
                        : isPlain       ? std::to_chars(buffer, end, payload_.floating, std::chars_format::fixed)
                                        : std::to_chars(buffer, end, payload_.floating);
    return {buffer, result.ptr};
}

}  // namespace flarebox
