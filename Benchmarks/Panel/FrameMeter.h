#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace flarebox::benchmarks {

/// Measures frames one by one: the processor time of the calling thread and what it asks the heap for.
///
/// The kernel's clock of the thread's processor time is exact but takes a system call to read; the steady clock is read
/// in 20 ns but runs on while another process has the processor. Both are upper bounds of what the frame itself took,
/// so the lower of the two counts. Nothing is subtracted.
class FrameMeter {
public:
    explicit FrameMeter(std::size_t expectedFrames);

    template <class Frame>
    void measure(Frame&& frame) {
        begin();
        frame();
        end();
    }

    std::size_t frames() const { return seconds_.size(); }
    double median() const { return percentile(0.5); }
    /// `share` from 0 to 1.
    double percentile(double share) const;
    double worst() const { return percentile(1); }
    /// In all frames.
    std::uint64_t allocations() const { return allocations_; }

    /// The median as the time, the rest as counters.
    void report(benchmark::State& state) const;

private:
    void begin();
    void end();

    std::vector<double> seconds_;
    std::uint64_t allocations_ = 0, allocationsBefore_ = 0;
    double threadBefore_ = 0, steadyBefore_ = 0;
};

/// Writes 64 MiB, more than the caches of a processor hold.
void emptyCaches();

}  // namespace flarebox::benchmarks
