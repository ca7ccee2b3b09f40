#include <Benchmarks/Support/ThisProgram.h>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace flarebox::benchmarks {

void require(bool condition, const char* message) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", message);
    std::exit(1);
}

std::string outputOfThisProgram(const std::string& arguments) {
    std::FILE* pipe = popen(("exec /proc/$PPID/exe " + arguments).c_str(), "re");
    require(pipe, "another process cannot be started");
    std::string output;
    std::array<char, 4096> bytes;
    while (const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), pipe))
        output.append(bytes.data(), count);
    require(pclose(pipe) == 0, "a run in another process failed");
    return output;
}

}  // namespace flarebox::benchmarks
