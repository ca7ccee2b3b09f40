#pragma once

#include <windows.h>

#include <cerrno>
#include <string>
#include <string_view>

namespace flarebox::windows {

/// The system's own texts are UTF-16. Empty for what is not UTF-8.
inline std::wstring wide(std::string_view text) {
    const int size = static_cast<int>(text.size());
    std::wstring result(text.size(), L'\0');  // never needs more units than bytes
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, result.data(),
                                           static_cast<int>(result.size()));
    result.resize(static_cast<std::size_t>(length > 0 ? length : 0));
    return result;
}

inline std::string narrow(std::wstring_view text) {
    std::string result(text.size() * 3, '\0');
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(),
                                           static_cast<int>(result.size()), nullptr, nullptr);
    result.resize(static_cast<std::size_t>(length > 0 ? length : 0));
    return result;
}

/// The number of <cerrno> that says the same as the system's last error.
inline int lastError() {
    switch (GetLastError()) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return ENOENT;
        case ERROR_ALREADY_EXISTS:
        case ERROR_FILE_EXISTS:
            return EEXIST;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return ENOSPC;
        case ERROR_WRITE_PROTECT:
            return EROFS;
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
            return EINVAL;
        case ERROR_FILENAME_EXCED_RANGE:
            return ENAMETOOLONG;
        case ERROR_TOO_MANY_OPEN_FILES:
            return EMFILE;
        case ERROR_DIRECTORY:
            return ENOTDIR;
        default:
            return EACCES;
    }
}

}  // namespace flarebox::windows
