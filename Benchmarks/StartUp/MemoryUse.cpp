#include <Benchmarks/StartUp/MemoryUse.h>
#include <Benchmarks/Support/ThisProgram.h>

#include <fstream>
#include <string>

namespace flarebox::benchmarks {

MemoryUse MemoryUse::now() {
    std::ifstream file("/proc/self/smaps_rollup");
    require(bool(file), "the process's memory cannot be read");
    MemoryUse use;
    for (std::string word; file >> word;) {
        std::size_t kilobytes = 0;
        if (word == "Rss:" && file >> kilobytes) use.resident = kilobytes * 1024;
        if (word == "Private_Dirty:" && file >> kilobytes) use.written = kilobytes * 1024;
    }
    return use;
}

}  // namespace flarebox::benchmarks
