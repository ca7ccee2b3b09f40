#include <Benchmarks/Support/Allocations.h>

#include <cstdlib>
#include <new>

namespace {

thread_local constinit std::uint64_t allocations = 0, bytes = 0;

void* allocate(std::size_t size) noexcept {
    ++allocations;
    bytes += size;
    return std::malloc(size ? size : 1);
}

void* allocateOrThrow(std::size_t size) {
    if (void* memory = allocate(size)) return memory;
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
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
}
// A sanitizer brings its own of these, which would not go with what deletes.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
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
