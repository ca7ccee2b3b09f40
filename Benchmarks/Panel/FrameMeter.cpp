#include <Benchmarks/Panel/FrameMeter.h>
#include <Benchmarks/Support/Allocations.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>

namespace flarebox::benchmarks {

namespace {

double threadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace

FrameMeter::FrameMeter(std::size_t expectedFrames) {
    seconds_.reserve(expectedFrames);
}

void FrameMeter::begin() {
    allocationsBefore_ = allocationCount();
    threadBefore_ = threadSeconds();
    steadyBefore_ = steadySeconds();
}

void FrameMeter::end() {
    const double steady = steadySeconds() - steadyBefore_;
    const double thread = threadSeconds() - threadBefore_;
    allocations_ += allocationCount() - allocationsBefore_;
    seconds_.push_back(std::min(steady, thread));
}

double FrameMeter::percentile(double share) const {
    if (seconds_.empty()) return 0;
    std::vector<double> sorted = seconds_;
    const auto place = static_cast<std::ptrdiff_t>(std::ceil(share * static_cast<double>(sorted.size())) - 1);
    const auto found = sorted.begin() + std::max<std::ptrdiff_t>(0, place);
    std::nth_element(sorted.begin(), found, sorted.end());
    return *found;
}

void FrameMeter::report(benchmark::State& state) const {
    state.SetIterationTime(median());
    state.counters["p99_us"] = percentile(0.99) * 1e6;
    state.counters["worst_us"] = worst() * 1e6;
    state.counters["frames"] = static_cast<double>(frames());
    state.counters["allocations"] = static_cast<double>(allocations());
}

void emptyCaches() {
    static std::vector<std::uint64_t> memory(std::size_t{8} << 20);
    static std::uint64_t round = 0;
    ++round;
    for (std::uint64_t& word : memory) word = round;
    benchmark::DoNotOptimize(memory.data());
    benchmark::ClobberMemory();
}

}  // namespace flarebox::benchmarks
