#include <Flarebox/Core/BuiltInResources.h>
#include <Flarebox/Core/FlareboxBundle.h>
#include <Foundation/NSProcessInfo.h>

#include <cstdlib>
#include <string>

namespace flarebox {
namespace {

std::string resourcesFolder() {
    if (const char* folder = std::getenv("FLAREBOX_RESOURCES"); folder && *folder) return folder;
    return NSProcessInfo::executableDirectory() + "/Flarebox/Resources";
}

}  // namespace

NSBundle& flareboxBundle() {
    static const Ref<NSBundle> bundle = [] {
        Ref<NSBundle> registered = NSBundle::bundleWithIdentifier(flareboxBundleIdentifier);
        if (!registered) registered = NSBundle::registerBundle(flareboxBundleIdentifier, resourcesFolder());
        registered->setBuiltInFiles(builtInResources());
        return registered;
    }();
    return *bundle;
}

}  // namespace flarebox
