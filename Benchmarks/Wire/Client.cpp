#include <Benchmarks/Wire/Client.h>

#include <cstdio>
#include <cstdlib>

namespace flarebox::benchmarks {

void require(bool condition, const char* message) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", message);
    std::exit(1);
}

}  // namespace flarebox::benchmarks
