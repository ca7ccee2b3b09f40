#include <Foundation/AtomicFile.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace flarebox {
namespace {

namespace fs = std::filesystem;

std::string folderOf(const std::string& path) {
    const std::string folder = fs::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

std::string hiddenPattern(const std::string& path) {
    // A name may be as long as the system allows: the pattern must not be longer.
    constexpr std::size_t longest = 200;
    return folderOf(path) + "/." + fs::path(path).filename().string().substr(0, longest) + ".XXXXXX";
}

}  // namespace

void AtomicFile::create() {
    descriptor_ = open(folderOf(path_).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (descriptor_ >= 0) return;
    std::string name = hiddenPattern(path_);
    descriptor_ = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor_ < 0)
        fail(errno);
    else
        hiddenPath_ = name;
}

std::size_t AtomicFile::append(std::string_view bytes) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) fail(errno);
    return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
}

void AtomicFile::discard() {
    if (descriptor_ >= 0) close(descriptor_);
    if (!hiddenPath_.empty()) unlink(hiddenPath_.c_str());
}

bool AtomicFile::takePlace() {
    if (hiddenPath_.empty()) {
        const std::string bytes = "/proc/self/fd/" + std::to_string(descriptor_);
        if (linkat(AT_FDCWD, bytes.c_str(), AT_FDCWD, path_.c_str(), AT_SYMLINK_FOLLOW) == 0) return true;
        if (errno != EEXIST) return fail(errno);
        // Only a file with a name can take another one's place.
        std::string name = hiddenPattern(path_);
        const int taken = mkostemp(name.data(), O_CLOEXEC);
        if (taken < 0) return fail(errno);
        close(taken);
        unlink(name.c_str());
        if (linkat(AT_FDCWD, bytes.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0) return fail(errno);
        hiddenPath_ = name;
    }
    return rename(hiddenPath_.c_str(), path_.c_str()) == 0 || fail(errno);
}

}  // namespace flarebox
