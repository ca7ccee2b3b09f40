#include <Flarebox/Core/FlareboxBundle.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace flarebox {
namespace {

std::string resourcesFolder() {
    if (const char* folder = std::getenv("FLAREBOX_RESOURCES"); folder && *folder) return folder;
    std::error_code error;
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path beside = executable.parent_path() / "Flarebox" / "Resources";
    if (!error && std::filesystem::is_directory(beside, error)) return beside.string();
    return FLAREBOX_RESOURCES;
}

}  // namespace

NSBundle& flareboxBundle() {
    static const Ref<NSBundle> bundle = [] {
        const Ref<NSBundle> registered = NSBundle::bundleWithIdentifier(flareboxBundleIdentifier);
        return registered ? registered : NSBundle::registerBundle(flareboxBundleIdentifier, resourcesFolder());
    }();
    return *bundle;
}

}  // namespace flarebox
