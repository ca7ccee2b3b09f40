#include <Benchmarks/Wire/Client.h>
#include <Benchmarks/Wire/DownloadProcess.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string_view>

namespace flarebox::benchmarks {

namespace {

constexpr std::string_view mark = "--download";

struct ClosePipe {
    void operator()(std::FILE* pipe) const { pclose(pipe); }
};

}  // namespace

std::size_t DownloadProcess::peakOf(const Order& order) {
    std::string command = "exec /proc/$PPID/exe";
    command.append(" ").append(mark).append(" ").append(order.client).append(" ").append(order.baseURL);
    command.append(" '").append(order.folder).append("' ");
    command.append(std::to_string(order.count)).append(" ").append(std::to_string(order.inFlight));
    const std::unique_ptr<std::FILE, ClosePipe> process(popen(command.c_str(), "re"));
    std::size_t peak = 0;
    require(process && std::fscanf(process.get(), "%zu", &peak) == 1, "the downloads in another process failed");
    return peak;
}

std::optional<DownloadProcess::Order> DownloadProcess::orderIn(int count, char** arguments) {
    if (count != 7 || arguments[1] != mark) return std::nullopt;
    return Order{arguments[2], arguments[3], arguments[4], std::atoi(arguments[5]), std::atoi(arguments[6])};
}

void DownloadProcess::reportPeak() {
    std::ifstream status("/proc/self/status");
    std::string word;
    std::size_t kilobytes = 0;
    while (status >> word && word != "VmHWM:") {
    }
    require(bool(status >> kilobytes), "the peak of memory cannot be read");
    std::printf("%zu\n", kilobytes * 1024);
}

}  // namespace flarebox::benchmarks
