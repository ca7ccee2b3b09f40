#include <Foundation/Immortal.h>
#include <Foundation/LogSink.h>

#include <cstdio>
#include <mutex>
#include <string>
#include <utility>

namespace flarebox {

namespace {

/// The host's sink. Recursive, so that a sink may set another one and say something itself.
struct Sink {
    std::recursive_mutex mutex;
    LogSink::Write write;
    bool isWriting = false;
};

// Threads that outlive the statics may still have something to say.
Sink& sink() {
    static detail::Immortal<Sink> sink;
    return *sink;
}

/// By one call, so that the lines of several threads do not mix.
void writeToStandardError(std::string_view message) {
    const std::string line = std::string(message) + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace

void LogSink::set(Write write) {
    const std::lock_guard lock(sink().mutex);
    // The former one goes last: it may own what has something to say at its end.
    std::swap(sink().write, write);
}

void LogSink::write(LogLevel level, std::string_view message) {
    Sink& shared = sink();
    const std::lock_guard lock(shared.mutex);
    if (!shared.write || shared.isWriting) return writeToStandardError(message);
    bool isWritten = false;
    shared.isWriting = true;
    try {
        // A copy: the sink may replace itself.
        const Write write = shared.write;
        write(level, message);
        isWritten = true;
    } catch (...) {
    }
    shared.isWriting = false;
    if (!isWritten) writeToStandardError(message);
}

}  // namespace flarebox
