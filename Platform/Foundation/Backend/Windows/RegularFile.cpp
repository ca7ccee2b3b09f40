#include <Foundation/Backend/Windows/WideText.h>
#include <Foundation/RegularFile.h>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>

namespace flarebox {
namespace {

constexpr std::size_t largestStep = std::size_t{1} << 30;

}  // namespace

RegularFile::RegularFile(const std::string& path, Links links) {
    const std::wstring name = windows::wide(path);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        failure_ = windows::lastError();
    else if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        failure_ = EISDIR;
    else if (links == Links::Refuse && (attributes & FILE_ATTRIBUTE_REPARSE_POINT))
        failure_ = EACCES;
    if (failure_ != 0) return;
    const int descriptor = _wopen(name.c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
    struct _stat64 status {};
    if (descriptor < 0 || _fstat64(descriptor, &status) != 0)
        failure_ = errno;
    else if ((status.st_mode & _S_IFMT) != _S_IFREG)
        failure_ = EISDIR;
    if (failure_ == 0) {
        descriptor_ = descriptor;
        size_ = static_cast<std::uint64_t>(status.st_size);
    } else if (descriptor >= 0) {
        _close(descriptor);
    }
}

RegularFile::~RegularFile() {
    if (isOpen()) _close(descriptor_);
}

bool RegularFile::read(std::uint64_t offset, void* buffer, std::size_t size) const {
    auto* to = static_cast<std::byte*>(buffer);
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor_));
    while (size > 0) {
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(offset);
        place.OffsetHigh = static_cast<DWORD>(offset >> 32);
        DWORD count = 0;
        const auto step = static_cast<DWORD>(std::min(size, largestStep));
        if (!ReadFile(handle, to, step, &count, &place) || count == 0) return false;
        offset += count;
        to += count;
        size -= count;
    }
    return true;
}

std::optional<std::size_t> RegularFile::readNext(void* buffer, std::size_t size) {
    const int count = _read(descriptor_, buffer, static_cast<unsigned>(std::min(size, largestStep)));
    if (count < 0) return std::nullopt;
    return static_cast<std::size_t>(count);
}

}  // namespace flarebox
