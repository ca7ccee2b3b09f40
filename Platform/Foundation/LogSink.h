#pragma once

#include <Foundation/Export.h>

#include <cstdint>
#include <functional>
#include <string_view>

namespace flarebox {

/// Levels of a message, and of FlareboxConfig::logLevel: the lowest level that is printed.
enum LogLevel : std::int64_t { LogLevelInfo = 1, LogLevelWarning = 2, LogLevelError = 3 };

/// Where everything goes that the kit has to say: to standard error, a line a message, unless the host takes it.
class FLAREBOX_EXPORT LogSink {
public:
    /// A message without a line feed at its end. Called on the thread that has something to say, the worker threads
    /// included, one call at a time. Should be quick. What the kit says meanwhile on the same thread, and a message at
    /// which it throws, goes to standard error.
    using Write = std::function<void(LogLevel level, std::string_view message)>;

    /// Hands all messages to `write` from now on; null: to standard error. Once this returns, the former one is not
    /// called any more. Any thread.
    static void set(Write write);
    /// Any thread.
    static void write(LogLevel level, std::string_view message);
};

}  // namespace flarebox
