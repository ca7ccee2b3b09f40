#include <Benchmarks/StartUp/ProductService.h>
#include <Benchmarks/StartUp/StartUp.h>
#include <Benchmarks/Support/ThisProgram.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string_view>

namespace flarebox::benchmarks {

namespace {

constexpr std::string_view mark = "--start-up";

/// A home folder in memory, where nothing is yet: what is measured is the kit, not the disk.
class Home {
public:
    Home() : path_("/dev/shm/flarebox-home-XXXXXX") { require(mkdtemp(path_.data()), "there is no folder"); }
    ~Home() { std::filesystem::remove_all(path_); }
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

/// In a process of its own: what is used for the first time counts.
void followOrder(const std::string& baseURL, const std::string& home) {
    for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"}) setenv(name, home.c_str(), 1);
    for (const auto& [name, value] : startUp(baseURL, std::getenv("BENCH_EXPLAIN")))
        std::printf("%s %g\n", name.c_str(), value);
}

void startUpOnce(benchmark::State& state, const std::string& baseURL) {
    const Home home;
    std::string arguments(mark);
    arguments.append(" ").append(baseURL).append(" ").append(home.path());
    for (auto _ : state) {
        std::istringstream output(outputOfThisProgram(arguments));
        std::string name;
        for (double value = 0; output >> name >> value;) state.counters[name] = value;
        require(state.counters.count("list_shown_ms") == 1, "the tab has not started");
        state.SetIterationTime(state.counters["list_shown_ms"] / 1000);
    }
}

}  // namespace

}  // namespace flarebox::benchmarks

int main(int argc, char** argv) {
    using namespace flarebox::benchmarks;
    if (argc == 4 && argv[1] == mark) {
        followOrder(argv[2], argv[3]);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    const ProductService service;
    benchmark::RegisterBenchmark("StartUp", [&](benchmark::State& state) { startUpOnce(state, service.baseURL()); })
        ->UseManualTime()
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
