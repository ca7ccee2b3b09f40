#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace flarebox {

/// A regular file, open for reading. Whatever else lies at the path, a folder or a pipe, is none, and never holds up
/// who opens it. One thread at a time.
class RegularFile {
public:
    enum class Links { Follow, Refuse };
    explicit RegularFile(const std::string& path, Links links = Links::Follow);
    ~RegularFile();
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }
    /// Why it is not open, as a number of <cerrno>; 0 when it is. EISDIR for everything that is no regular file.
    int failure() const { return failure_; }
    /// In bytes, when it was opened; a file may grow and shrink.
    std::uint64_t size() const { return size_; }

    /// Reads what lies at an offset. False when there are not so many bytes, or the system cannot read them.
    bool read(std::uint64_t offset, void* buffer, std::size_t size) const;
    /// Reads on from where the last call has ended, at first from the start. The count is 0 at the end; absent, with
    /// errno, when the system cannot read.
    std::optional<std::size_t> readNext(void* buffer, std::size_t size);

private:
    int descriptor_ = -1;
    int failure_ = 0;
    std::uint64_t size_ = 0;
};

}  // namespace flarebox
