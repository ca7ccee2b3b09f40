#pragma once

namespace flarebox {

/// Counts how deeply this thread is inside values within values. Answers of a service are bounded when they are read;
/// what a host builds is not, and may even hold itself.
class NestingLevel {
public:
    static constexpr int deepest = 1000;

    NestingLevel() { ++current_; }
    ~NestingLevel() { --current_; }
    NestingLevel(const NestingLevel&) = delete;
    NestingLevel& operator=(const NestingLevel&) = delete;

    bool isTooDeep() const { return current_ > deepest; }

private:
    static inline thread_local int current_ = 0;
};

}  // namespace flarebox
