#pragma once

#include <cstddef>

namespace flarebox::endurance {

/// Stand before the system's own operations in this program and refuse what a system that has run out refuses. Any
/// thread.
struct Seams {
    /// Whether they are there: a sanitizer has its own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    static constexpr bool areThere = false;
#else
    static constexpr bool areThere = true;
#endif
    /// No file grows any more.
    static void setDiskFull(bool full);
    /// No more threads start.
    static void setThreadsRefused(bool refused);
    /// On the threads whose names begin so, nothing of that size in bytes or more is to be had; null for none. The name
    /// is kept.
    static void setMemoryRefused(const char* threads, std::size_t size);
    /// How often anything was refused.
    static int refusals();
};

}  // namespace flarebox::endurance
