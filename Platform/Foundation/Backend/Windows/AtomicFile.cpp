#include <Foundation/AtomicFile.h>
#include <Foundation/Backend/Windows/WideText.h>
#include <Foundation/NSUUID.h>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

namespace flarebox {

namespace fs = std::filesystem;

void AtomicFile::create() {
    const auto identifier = NSUUID::UUID();
    const fs::path folder = fs::path(windows::wide(path_)).parent_path();
    const fs::path hidden = folder / windows::wide("." + (identifier ? identifier->UUIDString() : "writing"));
    descriptor_ =
        _wopen(hidden.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    if (descriptor_ < 0)
        fail(errno);
    else
        hiddenPath_ = windows::narrow(hidden.native());
}

std::size_t AtomicFile::append(std::string_view bytes) {
    const auto step = static_cast<unsigned>(std::min(bytes.size(), std::size_t{1} << 30));
    const int count = _write(descriptor_, bytes.data(), step);
    if (count < 0) fail(errno);
    return static_cast<std::size_t>(std::max(count, 0));
}

void AtomicFile::discard() {
    if (descriptor_ >= 0) _close(descriptor_);
    if (!hiddenPath_.empty()) _wunlink(windows::wide(hiddenPath_).c_str());
}

bool AtomicFile::takePlace() {
    // An open file cannot be renamed.
    const bool isWritten = _close(descriptor_) == 0;
    descriptor_ = -1;
    if (!isWritten) return fail(errno);
    const std::wstring from = windows::wide(hiddenPath_), to = windows::wide(path_);
    if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
    return fail(windows::lastError());
}

}  // namespace flarebox
