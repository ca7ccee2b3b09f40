#include <Benchmarks/Support/Allocations.h>

#include <cstdlib>
#include <new>

namespace {

thread_local constinit std::uint64_t allocations = 0, bytes = 0;

void* allocate(std::size_t size) {
    ++allocations;
    bytes += size;
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}

}  // namespace

std::uint64_t flarebox::benchmarks::allocationCount() noexcept {
    return allocations;
}

std::uint64_t flarebox::benchmarks::allocatedBytes() noexcept {
    return bytes;
}

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
