#include <Foundation/FileError.h>
#include <Foundation/NSFileManager.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace flarebox {
namespace {

int codeFor(int number, FileAccess access) {
    bool reads = access == FileAccess::Read;
    switch (number) {
        case ENOENT:
        case ENOTDIR:
            return reads ? NSFileReadNoSuchFileError : NSFileNoSuchFileError;
        case EACCES:
        case EPERM:
            return reads ? NSFileReadNoPermissionError : NSFileWriteNoPermissionError;
        case EINVAL:
        case ENAMETOOLONG:
            return reads ? NSFileReadInvalidFileNameError : NSFileWriteInvalidFileNameError;
        case EFBIG:
            return reads ? NSFileReadTooLargeError : NSFileWriteOutOfSpaceError;
        case EEXIST:
        case ENOTEMPTY:
            return NSFileWriteFileExistsError;
        case ENOSPC:
#ifdef EDQUOT
        case EDQUOT:
#endif
            return NSFileWriteOutOfSpaceError;
        case EROFS:
            return NSFileWriteVolumeReadOnlyError;
        default:
            return reads ? NSFileReadUnknownError : NSFileWriteUnknownError;
    }
}

}  // namespace

Ref<NSError> fileError(int number, FileAccess access, std::string_view path) {
    const std::string text =
        std::system_category().message(number) + ": " + std::string(path.substr(0, path.find('\0')));
    return NSError::errorWithDomain(NSCocoaErrorDomain, codeFor(number, access), text);
}

}  // namespace flarebox
