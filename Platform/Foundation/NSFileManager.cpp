#include <Foundation/AtomicFile.h>
#include <Foundation/FileError.h>
#include <Foundation/Immortal.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSProcessInfo.h>
#include <Foundation/RegularFile.h>
#include <Foundation/System.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>

namespace flarebox {

namespace {

namespace fs = std::filesystem;

using Access = FileAccess;

bool fail(Ref<NSError>* error, int number, Access access, std::string_view path) {
    if (error) *error = fileError(number, access, path);
    return false;
}

/// The path without the separators at its end, which would make the system follow a link; none when it cannot name a
/// file.
std::optional<std::string> pathOf(std::string_view text) {
    if (text.empty() || text.find('\0') != std::string_view::npos) return std::nullopt;
    while (text.size() > 1 && text.back() == '/') text.remove_suffix(1);
    return std::string(text);
}

/// 0, or the number of the error.
int readAll(RegularFile& file, std::string& contents, std::size_t limit) {
    constexpr std::size_t step = std::size_t{64} * 1024;
    for (;;) {
        const std::size_t size = contents.size();
        contents.resize(size + step);
        const auto count = file.readNext(contents.data() + size, step);
        if (!count) return errno;
        contents.resize(size + *count);
        if (contents.size() > limit) return EFBIG;
        if (*count == 0) return 0;
    }
}

}  // namespace

bool isPlainPathComponent(std::string_view name) {
    if (name.empty() || name == "." || name == ".." || name.size() > 255) return false;
    return name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

NSFileManager& NSFileManager::defaultManager() {
    static detail::Immortal<NSFileManager> manager;
    return *manager;
}

bool NSFileManager::fileExistsAtPath(std::string_view path) const {
    auto name = pathOf(path);
    std::error_code ignored;
    return name && fs::exists(*name, ignored);
}

bool NSFileManager::isRegularFileAtPath(std::string_view path) const {
    auto name = pathOf(path);
    std::error_code ignored;
    return name && fs::symlink_status(*name, ignored).type() == fs::file_type::regular;
}

std::vector<std::string> NSFileManager::contentsOfDirectoryAtPath(std::string_view path, Ref<NSError>* error) const {
    std::vector<std::string> names;
    auto name = pathOf(path);
    std::error_code failure = name ? std::error_code() : std::make_error_code(std::errc::invalid_argument);
    fs::directory_iterator entry;
    if (name) entry = fs::directory_iterator(*name, failure);
    for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
        names.push_back(entry->path().filename().string());
    }
    if (failure) {
        fail(error, failure.value(), Access::Read, path);
        return {};
    }
    std::ranges::sort(names);
    return names;
}

bool NSFileManager::removeItemAtPath(std::string_view path, Ref<NSError>* error) const {
    auto name = pathOf(path);
    if (!name) return fail(error, EINVAL, Access::Write, path);
    std::error_code failure;
    auto count = fs::remove_all(*name, failure);
    if (failure) return fail(error, failure.value(), Access::Write, path);
    return count > 0 || fail(error, ENOENT, Access::Write, path);
}

bool NSFileManager::createDirectoryAtPath(std::string_view path, bool withIntermediateDirectories,
                                          Ref<NSError>* error) const {
    auto name = pathOf(path);
    if (!name) return fail(error, EINVAL, Access::Write, path);
    std::error_code ignored;
    // Looked for first: one that is there is asked for again and again.
    if (withIntermediateDirectories && fs::is_directory(*name, ignored)) return true;
    int number = system::makeDirectory(*name);
    if (number == 0) return true;
    if (!withIntermediateDirectories) return fail(error, number, Access::Write, path);
    if (number == EEXIST && fs::is_directory(*name, ignored)) return true;
    fs::path parent = fs::path(*name).parent_path();
    if (number != ENOENT || parent.empty()) return fail(error, number, Access::Write, path);
    if (!createDirectoryAtPath(parent.string(), true, error)) return false;
    // Somebody else may have been faster.
    number = system::makeDirectory(*name);
    return number == 0 || number == EEXIST || fail(error, number, Access::Write, path);
}

bool NSFileManager::moveItemAtPath(std::string_view path, std::string_view toPath, Ref<NSError>* error) const {
    auto from = pathOf(path);
    auto to = pathOf(toPath);
    if (!from || !to) return fail(error, EINVAL, Access::Write, from ? toPath : path);
    const int number = system::renameUnlessTaken(*from, *to);
    return number == 0 || fail(error, number, Access::Write, number == ENOENT ? path : toPath);
}

bool NSFileManager::replaceItemAtPath(std::string_view path, std::string_view withItemAtPath,
                                      Ref<NSError>* error) const {
    auto to = pathOf(path);
    auto from = pathOf(withItemAtPath);
    if (!from || !to) return fail(error, EINVAL, Access::Write, from ? path : withItemAtPath);
    std::error_code failure;
    fs::rename(*from, *to, failure);
    if (!failure) return true;
    const int number = failure.value();
    return fail(error, number, Access::Write, number == ENOENT ? withItemAtPath : path);
}

NSData NSFileManager::contentsAtPath(std::string_view path, std::size_t limit, Ref<NSError>* error) const {
    auto name = pathOf(path);
    if (!name) {
        fail(error, EINVAL, Access::Read, path);
        return {};
    }
    RegularFile file(*name);
    std::string contents;
    const int number = file.isOpen() ? readAll(file, contents, limit) : file.failure();
    if (number == 0) return NSData::dataWithString(std::move(contents));
    fail(error, number, Access::Read, path);
    return {};
}

bool NSFileManager::writeAtomically(std::string_view contents, std::string_view toPath, Ref<NSError>* error) const {
    AtomicFile file(toPath);
    file.write(contents);
    if (file.commit()) return true;
    if (error) *error = file.error();
    return false;
}

std::string NSFileManager::documentsPath() const {
    {
        std::lock_guard lock(mutex_);
        if (!documentsDirectory_.empty()) return documentsDirectory_;
    }
    const std::string data = NSProcessInfo::processInfo().dataDirectory();
    return data.empty() ? data : data + "/Documents";
}

std::string NSFileManager::documentsDirectory(Ref<NSError>* error) const {
    const std::string path = documentsPath();
    return createDirectoryAtPath(path, true, error) ? path : std::string();
}

void NSFileManager::setDocumentsDirectory(std::string_view path) {
    std::lock_guard lock(mutex_);
    documentsDirectory_ = path;
}

}  // namespace flarebox
