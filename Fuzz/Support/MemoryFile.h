#pragma once

#include <Fuzz/Support/FuzzTarget.h>

#include <string>

namespace flarebox::fuzz {

/// A file that lies in memory only, for what can read nothing but files.
class MemoryFile {
public:
    explicit MemoryFile(std::string_view contents);
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

}  // namespace flarebox::fuzz
