#include <Foundation/RegularFile.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace flarebox {

RegularFile::RegularFile(const std::string& path, Links links) {
    // Without blocking, so that a pipe lying there cannot hold the caller.
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | (links == Links::Refuse ? O_NOFOLLOW : 0);
    const int descriptor = open(path.c_str(), flags);
    struct stat status {};
    if (descriptor < 0 || fstat(descriptor, &status) != 0)
        failure_ = errno;
    else if (!S_ISREG(status.st_mode))
        failure_ = EISDIR;
    if (failure_ == 0) {
        descriptor_ = descriptor;
        size_ = static_cast<std::uint64_t>(status.st_size);
    } else if (descriptor >= 0) {
        close(descriptor);
    }
}

RegularFile::~RegularFile() {
    if (isOpen()) close(descriptor_);
}

bool RegularFile::read(std::uint64_t offset, void* buffer, std::size_t size) const {
    auto* to = static_cast<std::byte*>(buffer);
    while (size > 0) {
        const ssize_t count = pread(descriptor_, to, size, static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        offset += static_cast<std::uint64_t>(count);
        to += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

std::optional<std::size_t> RegularFile::readNext(void* buffer, std::size_t size) {
    for (;;) {
        const ssize_t count = ::read(descriptor_, buffer, size);
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) return std::nullopt;
    }
}

}  // namespace flarebox
