#include <Tests/Endurance/Seams.h>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>

namespace flarebox::endurance {
namespace {

std::atomic<bool> isDiskFull = false, areThreadsRefused = false;
std::atomic<const char*> shortThreads = nullptr;
std::atomic<std::size_t> largestSize = 0;
std::atomic<int> refused = 0;

bool isFileForGood(int descriptor) {
    struct stat status {};
    return descriptor > STDERR_FILENO && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

[[maybe_unused]] bool isMemoryRefused(std::size_t size) {
    const char* const threads = shortThreads;
    if (!threads || size < largestSize) return false;
    std::array<char, 16> name{};
    pthread_getname_np(pthread_self(), name.data(), name.size());
    return std::strncmp(name.data(), threads, std::strlen(threads)) == 0;
}

}  // namespace

void Seams::setDiskFull(bool full) {
    isDiskFull = full;
}
void Seams::setThreadsRefused(bool areRefused) {
    areThreadsRefused = areRefused;
}
void Seams::setMemoryRefused(const char* threads, std::size_t size) {
    largestSize = size;
    shortThreads = threads;
}
int Seams::refusals() {
    return refused;
}

}  // namespace flarebox::endurance

extern "C" ssize_t write(int descriptor, const void* bytes, size_t count) {
    using namespace flarebox::endurance;
    if (isDiskFull && isFileForGood(descriptor)) {
        ++refused;
        errno = ENOSPC;
        return -1;
    }
    return syscall(SYS_write, descriptor, bytes, count);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                              void* argument) {
    using namespace flarebox::endurance;
    if (areThreadsRefused) {
        ++refused;
        return EAGAIN;
    }
    static const auto real = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return real(thread, attributes, run, argument);
}

namespace {

void* allocate(std::size_t size) noexcept {
    if (flarebox::endurance::isMemoryRefused(size)) {
        ++flarebox::endurance::refused;
        return nullptr;
    }
    return std::malloc(size ? size : 1);
}

void* allocateOrThrow(std::size_t size) {
    if (void* memory = allocate(size)) return memory;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
}
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

#endif
