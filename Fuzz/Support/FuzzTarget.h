#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace flarebox::fuzz {

using Input = std::span<const std::uint8_t>;

/// What one fuzzer does with one input. Registered by name, so that a fuzzer's program and the replay of the checked-in
/// inputs share it.
struct FuzzTarget {
    FuzzTarget(std::string_view name, void (*run)(Input));
    std::string_view name;
    void (*run)(Input);
};

/// Those that are linked in, in no order that matters.
std::span<const FuzzTarget* const> fuzzTargets();

/// Ends the process with the message: what the fuzzer takes for a crash.
[[noreturn]] void fail(std::string_view message);
inline void check(bool condition, std::string_view message) {
    if (!condition) fail(message);
}

inline std::string_view text(Input input) {
    return {reinterpret_cast<const char*>(input.data()), input.size()};
}

}  // namespace flarebox::fuzz

/// Defines a fuzzer: its name, which is that of its corpus, and what it does with `Input input`.
#define FLAREBOX_FUZZER(Name)                                                 \
    static void run##Name(::flarebox::fuzz::Input input);                     \
    static const ::flarebox::fuzz::FuzzTarget target##Name(#Name, run##Name); \
    static void run##Name([[maybe_unused]] ::flarebox::fuzz::Input input)
