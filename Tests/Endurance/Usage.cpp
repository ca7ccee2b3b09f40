#include <Tests/Endurance/Usage.h>

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace flarebox::endurance {
namespace {

std::size_t entriesOf(const char* folder) {
    std::error_code ignored;
    std::filesystem::directory_iterator entry(folder, ignored);
    return static_cast<std::size_t>(std::distance(entry, std::filesystem::directory_iterator()));
}

double least(const std::vector<Usage>& values, std::size_t Usage::*what, double from, double to) {
    const auto at = [&](double share) { return static_cast<std::size_t>(share * static_cast<double>(values.size())); };
    std::size_t result = values[at(from)].*what;
    for (std::size_t index = at(from); index < at(to); ++index) result = std::min(result, values[index].*what);
    return static_cast<double>(result);
}

}  // namespace

Usage Usage::now() {
    const struct mallinfo2 info = mallinfo2();
    // The listing itself has one open.
    return {info.uordblks + info.hblkhd, entriesOf("/proc/self/task"), entriesOf("/proc/self/fd") - 1};
}

std::vector<std::string> threadNames() {
    std::vector<std::string> names;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task", ignored)) {
        std::ifstream file(entry.path() / "comm");
        std::getline(file, names.emplace_back());
    }
    return names;
}

std::size_t peakMiB() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) return std::stoul(line.substr(6)) / 1024;
    }
    return 0;
}

double growth(const std::vector<Usage>& values, std::size_t Usage::*what) {
    if (values.empty()) return 0;
    return least(values, what, 0.75, 1) - least(values, what, 0.25, 0.5);
}

void report(const std::string& test, std::size_t cases, std::size_t survived, std::size_t failures) {
    const char* file = std::getenv("FLAREBOX_RELIABILITY");
    if (!file) return;
    const char* tool = std::getenv("FLAREBOX_TOOL");
    const std::string under = tool && *tool ? " (" + std::string(tool) + ")" : "";
    std::ofstream(file, std::ios::app) << test << under << '\t' << cases << '\t' << survived << '\t' << failures << '\t'
                                       << peakMiB() << '\n';
}

std::size_t setting(const char* variable, std::size_t usual) {
    const char* text = std::getenv(variable);
    return text && *text ? std::strtoul(text, nullptr, 10) : usual;
}

}  // namespace flarebox::endurance
