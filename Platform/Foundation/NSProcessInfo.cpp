#include <Foundation/Immortal.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSProcessInfo.h>
#include <Foundation/System.h>

#include <filesystem>

namespace flarebox {

namespace {

namespace fs = std::filesystem;

fs::path executable() {
    return system::executablePath();
}

std::string below(const std::string& directory, const std::string& name) {
    return directory.empty() ? directory : directory + "/" + name;
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
    return below(system::settingsDirectory(), processName());
}

std::string NSProcessInfo::dataDirectory() const {
    return below(system::dataDirectory(), processName());
}

}  // namespace flarebox
