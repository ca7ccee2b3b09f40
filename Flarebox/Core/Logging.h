#pragma once

#include <Foundation/Export.h>
#include <Foundation/LogSink.h>
#include <Foundation/Values.h>

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace flarebox {

/// Whether a message of that level is printed now: reads the configuration afresh at every call. Any thread.
FLAREBOX_EXPORT bool isLogLevelEnabel(std::int64_t level);

/// The text that a format and its arguments make. `%@` prints any argument's description; the printf conversions
/// d i u x X o c s f F e E g G a A p with flags, width, precision and length print numbers and texts.
/// Arguments carry their own types: one that does not fit its conversion prints its description, a conversion without
/// an argument stays as it stands, surplus arguments are left out. Width and precision are bounded; `%n` and `*` are
/// not supported and stay as they stand.
FLAREBOX_EXPORT std::string formatLog(std::string_view format, std::span<const Value> arguments);

/// Writes "title: message", without a line feed that the format ends in, to the LogSink as information. Any thread.
FLAREBOX_EXPORT void printLog(std::string_view title, std::string_view format, std::span<const Value> arguments);

namespace detail {
FLAREBOX_EXPORT void logAt(LogLevel level, std::string_view format, std::span<const Value> arguments);
}  // namespace detail

/// Print when the configuration lets their level through; otherwise cost next to nothing. Any thread.
template <class... Arguments>
void errorLog(std::string_view format, const Arguments&... arguments) {
    if (!isLogLevelEnabel(LogLevelError)) return;
    detail::logAt(LogLevelError, format, std::array<Value, sizeof...(Arguments)>{Value(arguments)...});
}
template <class... Arguments>
void warningLog(std::string_view format, const Arguments&... arguments) {
    if (!isLogLevelEnabel(LogLevelWarning)) return;
    detail::logAt(LogLevelWarning, format, std::array<Value, sizeof...(Arguments)>{Value(arguments)...});
}
template <class... Arguments>
void infoLog(std::string_view format, const Arguments&... arguments) {
    if (!isLogLevelEnabel(LogLevelInfo)) return;
    detail::logAt(LogLevelInfo, format, std::array<Value, sizeof...(Arguments)>{Value(arguments)...});
}

}  // namespace flarebox
