#pragma once

#include <cstdint>

namespace flarebox::benchmarks {

/// How often this thread has asked the heap for memory through `new`.
std::uint64_t allocationCount() noexcept;

}  // namespace flarebox::benchmarks
