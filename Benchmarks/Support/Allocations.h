#pragma once

#include <cstdint>

namespace flarebox::benchmarks {

/// How often this thread has asked the heap for memory through `new`.
std::uint64_t allocationCount() noexcept;
/// How many bytes it has been given, those that it gave back included.
std::uint64_t allocatedBytes() noexcept;

}  // namespace flarebox::benchmarks
