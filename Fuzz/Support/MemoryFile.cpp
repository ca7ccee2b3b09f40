#include <Fuzz/Support/MemoryFile.h>

#include <sys/mman.h>
#include <unistd.h>

namespace flarebox::fuzz {

MemoryFile::MemoryFile(std::string_view contents) : descriptor_(memfd_create("fuzzed", MFD_CLOEXEC)) {
    const ssize_t written = write(descriptor_, contents.data(), contents.size());
    check(written == static_cast<ssize_t>(contents.size()), "there is memory for a file");
}

MemoryFile::~MemoryFile() {
    close(descriptor_);
}

}  // namespace flarebox::fuzz
