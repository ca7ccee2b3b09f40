#include <Foundation/Immortal.h>
#include <Foundation/NSNotificationCenter.h>
#include <Foundation/System.h>
#include <UIKit/UIDevice.h>

namespace flarebox {
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
    return system::names().system;
}

NSString UIDevice::systemVersion() const {
    return system::names().version;
}

NSString UIDevice::model() const {
    return system::names().machine;
}

}  // namespace flarebox
