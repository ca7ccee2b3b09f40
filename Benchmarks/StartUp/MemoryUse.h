#pragma once

#include <cstddef>

namespace flarebox::benchmarks {

/// What this process takes of the machine's memory, in bytes.
struct MemoryUse {
    /// Everything resident, what it shares with other processes included.
    std::size_t resident = 0;
    /// Written by this process, and so its alone: the heap, the stacks, the relocated tables of the libraries.
    std::size_t written = 0;

    static MemoryUse now();
};

}  // namespace flarebox::benchmarks
