#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <Foundation/Values.h>

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox {

namespace detail {
template <class T>
class Immortal;
}

/// Codes of NSCocoaErrorDomain for files.
enum NSFileErrorCode : int {
    NSFileNoSuchFileError = 4,
    NSFileReadUnknownError = 256,
    NSFileReadNoPermissionError = 257,
    NSFileReadInvalidFileNameError = 258,
    NSFileReadNoSuchFileError = 260,
    NSFileReadTooLargeError = 263,
    NSFileWriteUnknownError = 512,
    NSFileWriteNoPermissionError = 513,
    NSFileWriteInvalidFileNameError = 514,
    NSFileWriteFileExistsError = 516,
    NSFileWriteOutOfSpaceError = 640,
    NSFileWriteVolumeReadOnlyError = 642,
};

/// Whether the name can stand as one component of a path: not empty, not "." or "..", no separator, no NUL, at most 255
/// bytes.
bool isPlainPathComponent(std::string_view name);

/// Files and folders. Any thread. Every operation that can fail answers false (or empty) and, where `error` is given,
/// an error of NSCocoaErrorDomain whose description names the path.
class FLAREBOX_EXPORT NSFileManager {
public:
    /// The one instance; lasts as long as the process.
    static NSFileManager& defaultManager();

    /// Files and folders; links count as what they point to.
    bool fileExistsAtPath(std::string_view path) const;
    /// False for links, folders and everything else that is no file itself.
    bool isRegularFileAtPath(std::string_view path) const;
    /// Names of all entries, hidden ones included, sorted by bytes; empty on failure too.
    std::vector<std::string> contentsOfDirectoryAtPath(std::string_view path, Ref<NSError>* error = nullptr) const;
    /// Removes a file, a symbolic link (never what it points to) or a folder with everything in it.
    bool removeItemAtPath(std::string_view path, Ref<NSError>* error = nullptr) const;
    /// Creates a folder that only the user may enter; one that exists already is fine when intermediate folders are
    /// asked for.
    bool createDirectoryAtPath(std::string_view path, bool withIntermediateDirectories,
                               Ref<NSError>* error = nullptr) const;
    /// Renames within one file system, at once or not at all. Fails when there is something at the destination.
    bool moveItemAtPath(std::string_view path, std::string_view toPath, Ref<NSError>* error = nullptr) const;
    /// Renames like `moveItemAtPath`, taking the place of a file that is already there.
    bool replaceItemAtPath(std::string_view path, std::string_view withItemAtPath, Ref<NSError>* error = nullptr) const;

    /// The bytes of a regular file of at most `limit` bytes; absent on failure.
    NSData contentsAtPath(std::string_view path, std::size_t limit = std::size_t{1} << 30,
                          Ref<NSError>* error = nullptr) const;
    /// Writes a file that only the user may read. It appears, or takes the place of the old one, complete or not at
    /// all.
    bool writeAtomically(std::string_view contents, std::string_view toPath, Ref<NSError>* error = nullptr) const;

    /// The application's own documents directory, created where it is missing: what the host has set, or "Documents"
    /// below `NSProcessInfo::dataDirectory()`. Empty, with an error, when it cannot be created.
    std::string documentsDirectory(Ref<NSError>* error = nullptr) const;
    /// Where that is, whether it exists or not, without a look at the disk. Empty when the user has no home directory.
    std::string documentsPath() const;
    /// An empty path means the default again.
    void setDocumentsDirectory(std::string_view path);

private:
    friend class detail::Immortal<NSFileManager>;
    NSFileManager() = default;
    ~NSFileManager() = default;

    mutable std::mutex mutex_;
    std::string documentsDirectory_;
};

}  // namespace flarebox
