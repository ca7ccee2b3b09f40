#pragma once

#include <Foundation/Export.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace flarebox {

/// A 128-bit identifier. All zero unless made otherwise.
class FLAREBOX_EXPORT NSUUID {
public:
    constexpr NSUUID() noexcept = default;
    /// A random one (RFC 4122, version 4), from the system's random source. None when that source fails.
    static std::optional<NSUUID> UUID();
    /// From 8-4-4-4-12 hexadecimal digits of either case; none for any other text.
    static std::optional<NSUUID> UUIDWithString(std::string_view text);

    /// 8-4-4-4-12 hexadecimal digits in upper case.
    std::string UUIDString() const;
    friend bool operator==(const NSUUID&, const NSUUID&) = default;

private:
    std::array<std::uint8_t, 16> bytes_{};
};

}  // namespace flarebox
