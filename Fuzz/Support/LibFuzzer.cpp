// The entry that libFuzzer calls, in a program with one fuzzer.

#include <Fuzz/Support/FuzzTarget.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    flarebox::fuzz::fuzzTargets().front()->run({data, size});
    return 0;
}
