#include <Benchmarks/Support/LoopbackService.h>
#include <Benchmarks/Wire/CurlClient.h>
#include <Benchmarks/Wire/DownloadProcess.h>
#include <Benchmarks/Wire/KitClient.h>
#include <Foundation/Clock.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <memory>

namespace flarebox::benchmarks {

namespace {

constexpr int eventsOneByOne = 1000;
constexpr int eventsAtOnce = 5000;
constexpr int eventsInFlight = 64;
constexpr int models = 20;
constexpr std::size_t modelLength = std::size_t{1} << 20;

enum class Which { Libcurl, Flarebox, FlareboxAsleep };

LoopbackService* service = nullptr;

PlainEvent plainEvent() {
    PlainEvent event;
    const NSDictionary dictionary = sampleEvent()->toDictionary();
    for (const auto& [name, value] : dictionary.entries()) {
        event.emplace_back(name.as<NSString>().string(), value.as<NSString>().string());
    }
    return event;
}

std::unique_ptr<Client> makeClient(Which which, const std::string& baseURL) {
    if (which == Which::Libcurl) return std::make_unique<CurlClient>(baseURL, plainEvent());
    return std::make_unique<KitClient>(
        baseURL, which == Which::Flarebox ? KitClient::Host::CallsAgainAtOnce : KitClient::Host::SleepsUntilWoken);
}

/// A folder in memory: what is measured is the client, not the disk.
class Folder {
public:
    Folder() : path_("/dev/shm/flarebox-wire-XXXXXX") { require(mkdtemp(path_.data()), "there is no folder"); }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

template <class Work>
double secondsOf(const Work& work) {
    const double start = Clock::real().uptime();
    work();
    return Clock::real().uptime() - start;
}

double percentile(std::vector<double> values, double share) {
    const auto nth = values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), nth, values.end());
    return *nth;
}

void latency(benchmark::State& state, Which which) {
    service->setHasOwnProcessor(true);
    const int before = service->acceptedConnections();
    const auto client = makeClient(which, service->baseURL());
    client->reportEvents(100);
    for (auto _ : state) {
        const auto durations = client->reportEvents(eventsOneByOne);
        state.SetIterationTime(percentile(durations, 0.5));
        state.counters["p99_us"] = percentile(durations, 0.99) * 1e6;
    }
    state.counters["connections"] = service->acceptedConnections() - before;
    service->setHasOwnProcessor(false);
}

void throughput(benchmark::State& state, Which which) {
    const auto client = makeClient(which, service->baseURL());
    client->reportEventsAtOnce(500, eventsInFlight);
    for (auto _ : state) {
        const double seconds = secondsOf([&] { client->reportEventsAtOnce(eventsAtOnce, eventsInFlight); });
        state.SetIterationTime(seconds);
        state.counters["per_second"] = eventsAtOnce / seconds;
    }
}

void downloads(benchmark::State& state, Which which, int inFlight) {
    const Folder folder;
    const auto client = makeClient(which, service->baseURL());
    client->downloadModels(inFlight, inFlight, folder.path());
    for (auto _ : state) {
        const double seconds = secondsOf([&] { client->downloadModels(models, inFlight, folder.path()); });
        state.SetIterationTime(seconds);
        state.counters["MiB_per_second"] = models / seconds;
    }
    const auto peak = [&](const char* name) {
        const DownloadProcess::Order order{name, service->baseURL(), folder.path(), models, inFlight};
        return static_cast<double>(DownloadProcess::peakOf(order)) / (1 << 20);
    };
    if (which != Which::Libcurl) state.counters["MiB_over_libcurl"] = peak("flarebox") - peak("libcurl");
}

template <class... Arguments>
void add(const std::string& name, void (*run)(benchmark::State&, Which, Arguments...), Which which,
         Arguments... arguments) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) { run(state, which, arguments...); })
        ->UseManualTime()
        ->Iterations(1)
        ->Unit(benchmark::kMicrosecond);
}

void addAll() {
    for (const Which which : {Which::Libcurl, Which::Flarebox, Which::FlareboxAsleep}) {
        const std::string name = which == Which::Libcurl    ? "/libcurl"
                                 : which == Which::Flarebox ? "/flarebox"
                                                            : "/flarebox_under_a_sleeping_host";
        add("Wire/latency" + name, latency, which);
        add("Wire/throughput_64_in_flight" + name, throughput, which);
        add("Wire/downloads_one_by_one" + name, downloads, which, 1);
        add("Wire/downloads_at_once" + name, downloads, which, models);
    }
}

void follow(const DownloadProcess::Order& order) {
    makeClient(order.client == "libcurl" ? Which::Libcurl : Which::FlareboxAsleep, order.baseURL)
        ->downloadModels(order.count, order.inFlight, order.folder);
    DownloadProcess::reportPeak();
}

}  // namespace

}  // namespace flarebox::benchmarks

int main(int argc, char** argv) {
    using namespace flarebox::benchmarks;
    if (const auto order = DownloadProcess::orderIn(argc, argv)) {
        follow(*order);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    const std::string event = httpAnswer("application/json", R"({"status":"ok"})");
    const std::string model = httpAnswer("application/octet-stream", std::string(modelLength, 'm'));
    LoopbackService loopback(
        [&](std::string_view method, std::string_view) { return std::string_view(method == "GET" ? model : event); });
    service = &loopback;
    addAll();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
