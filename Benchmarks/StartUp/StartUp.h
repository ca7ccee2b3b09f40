#pragma once

#include <map>
#include <string>

namespace flarebox::benchmarks {

/// Figures by their names: times in milliseconds, memory in MiB.
using Figures = std::map<std::string, double>;

/// Starts the tab as a game would, opens it, scrolls through its list and plays on until everything has arrived. The
/// process should have done nothing else before. Where `explains`, says on standard error what took the longest.
Figures startUp(const std::string& baseURL, bool explains);

}  // namespace flarebox::benchmarks
