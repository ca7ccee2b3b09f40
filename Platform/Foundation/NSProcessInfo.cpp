#include <Foundation/Immortal.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSProcessInfo.h>

#include <cstdlib>
#include <filesystem>

namespace flarebox {

namespace {

namespace fs = std::filesystem;

const fs::path& executable() {
    std::error_code error;
    static const fs::path path = fs::read_symlink("/proc/self/exe", error);
    return path;
}

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

/// The folder that an environment variable names, or the one below the user's home. Relative settings are void.
fs::path userDirectory(const char* variable, const char* belowHome) {
    fs::path set = environment(variable);
    if (set.is_absolute()) return set;
    fs::path home = environment("HOME");
    return home.is_absolute() ? home / belowHome : fs::path();
}

std::string below(const fs::path& directory, const std::string& name) {
    return directory.empty() ? std::string() : (directory / name).string();
}

}  // namespace

NSProcessInfo& NSProcessInfo::processInfo() {
    static detail::Immortal<NSProcessInfo> info;
    return *info;
}

std::string NSProcessInfo::processName() const {
    std::lock_guard lock(mutex_);
    if (!name_.empty()) return name_;
    std::string name = executable().filename().string();
    return isPlainPathComponent(name) ? name : "application";
}

bool NSProcessInfo::setProcessName(std::string_view name) {
    if (!isPlainPathComponent(name)) return false;
    std::lock_guard lock(mutex_);
    name_ = name;
    return true;
}

std::string NSProcessInfo::executableDirectory() {
    return executable().parent_path().string();
}

std::string NSProcessInfo::configurationDirectory() const {
    return below(userDirectory("XDG_CONFIG_HOME", ".config"), processName());
}

std::string NSProcessInfo::dataDirectory() const {
    return below(userDirectory("XDG_DATA_HOME", ".local/share"), processName());
}

}  // namespace flarebox
