#pragma once

namespace flarebox {

/// Sent as User-Agent by every request that sets none itself.
inline constexpr const char* userAgent = "Flarebox/" FLAREBOX_VERSION;

}  // namespace flarebox
