#include <Foundation/AtomicFile.h>
#include <Foundation/Backend/Windows/WideText.h>
#include <Foundation/FileError.h>
#include <Foundation/NSUUID.h>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

namespace flarebox {

namespace fs = std::filesystem;

AtomicFile::AtomicFile(std::string_view path) : path_(path) {
    while (path_.size() > 1 && (path_.back() == '/' || path_.back() == '\\')) path_.pop_back();
    if (path_.empty() || path_.find('\0') != path_.npos)
        failure_ = EINVAL;
    else
        openHidden();
}

AtomicFile::~AtomicFile() {
    if (descriptor_ >= 0) _close(descriptor_);
    if (!hiddenPath_.empty()) _wunlink(windows::wide(hiddenPath_).c_str());
}

Ref<NSError> AtomicFile::error() const {
    return failure_ == 0 ? nullptr : fileError(failure_, FileAccess::Write, path_);
}

bool AtomicFile::fail(int number) {
    if (failure_ == 0) failure_ = number;
    return false;
}

void AtomicFile::openUnnamed() {
    // Files have names here.
    openHidden();
}

void AtomicFile::openHidden() {
    const auto identifier = NSUUID::UUID();
    const fs::path folder = fs::path(windows::wide(path_)).parent_path();
    const fs::path hidden = folder / windows::wide("." + (identifier ? identifier->UUIDString() : "writing"));
    descriptor_ =
        _wopen(hidden.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    if (descriptor_ < 0)
        failure_ = errno;
    else
        hiddenPath_ = windows::narrow(hidden.native());
}

bool AtomicFile::write(std::string_view bytes) {
    while (isGood() && !bytes.empty()) {
        const auto step = static_cast<unsigned>(std::min(bytes.size(), std::size_t{1} << 30));
        const int count = _write(descriptor_, bytes.data(), step);
        if (count < 0) return fail(errno);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return isGood();
}

bool AtomicFile::commit() {
    if (!isGood() || !takePlace()) return false;
    hiddenPath_.clear();
    return true;
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
