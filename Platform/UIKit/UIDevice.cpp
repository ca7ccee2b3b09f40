#include <Foundation/Immortal.h>
#include <Foundation/NSNotificationCenter.h>
#include <UIKit/UIDevice.h>

#include <sys/utsname.h>

#include <fstream>
#include <string>
#include <string_view>

namespace flarebox {
namespace {

utsname systemNames() {
    utsname names{};
    uname(&names);
    return names;
}

/// The value of a line `NAME=value` or `NAME="value"` of the file that describes the distribution; empty when there is
/// none.
std::string distributionField(std::string_view name) {
    std::ifstream file("/etc/os-release");
    for (std::string line; std::getline(file, line);) {
        const auto equals = line.find('=');
        if (equals == std::string::npos || std::string_view(line).substr(0, equals) != name) continue;
        std::string value = line.substr(equals + 1);
        std::erase(value, '"');
        return value;
    }
    return {};
}

}  // namespace

UIDevice& UIDevice::currentDevice() {
    static detail::Immortal<UIDevice> device;
    return *device;
}

void UIDevice::endGeneratingDeviceOrientationNotifications() {
    if (generating_ > 0) --generating_;
}

void UIDevice::setOrientation(UIDeviceOrientation orientation) {
    if (orientation == orientation_) return;
    orientation_ = orientation;
    if (!isGeneratingDeviceOrientationNotifications()) return;
    NSNotificationCenter::defaultCenter().postNotificationName(UIDeviceOrientationDidChangeNotification);
}

NSString UIDevice::systemName() const {
    return systemNames().sysname;
}

NSString UIDevice::systemVersion() const {
    static const std::string version = distributionField("VERSION_ID");
    return version.empty() ? NSString(systemNames().release) : NSString(version);
}

NSString UIDevice::model() const {
    return systemNames().machine;
}

}  // namespace flarebox
