#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace flarebox::endurance {

/// What the process holds at one moment.
struct Usage {
    std::size_t heapBytes = 0, threads = 0, descriptors = 0;

    static Usage now();
};

/// Of this process.
std::vector<std::string> threadNames();

/// The most memory that the process has ever held, in MiB.
std::size_t peakMiB();

/// What an ever growing process would show: by how much the least of the last quarter of the values exceeds the least
/// of those between the first quarter, in which caches fill, and the middle. What comes and goes does not count.
double growth(const std::vector<Usage>& values, std::size_t Usage::*what);

/// Adds a line to the table of the file that the environment variable FLAREBOX_RELIABILITY names, if it does: test,
/// cases, faults survived, failures, peak in MiB. FLAREBOX_TOOL names what the program runs under, if anything.
void report(const std::string& test, std::size_t cases, std::size_t survived, std::size_t failures);

/// A number of the environment, for the longer runs of scripts; `usual` otherwise.
std::size_t setting(const char* variable, std::size_t usual);

}  // namespace flarebox::endurance
