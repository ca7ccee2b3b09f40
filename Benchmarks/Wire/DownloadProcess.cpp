#include <Benchmarks/Support/ThisProgram.h>
#include <Benchmarks/Wire/DownloadProcess.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string_view>

namespace flarebox::benchmarks {

namespace {

constexpr std::string_view mark = "--download";

}  // namespace

std::size_t DownloadProcess::peakOf(const Order& order) {
    std::string arguments(mark);
    arguments.append(" ").append(order.client).append(" ").append(order.baseURL);
    arguments.append(" '").append(order.folder).append("' ");
    arguments.append(std::to_string(order.count)).append(" ").append(std::to_string(order.inFlight));
    return std::stoull(outputOfThisProgram(arguments));
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
