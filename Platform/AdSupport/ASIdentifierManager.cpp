#include <AdSupport/ASIdentifierManager.h>

#include <Foundation/NSUserDefaults.h>

namespace flarebox {

ASIdentifierManager& ASIdentifierManager::sharedManager() {
    static ASIdentifierManager manager;
    return manager;
}

bool ASIdentifierManager::isAdvertisingTrackingEnabled() const {
    if (isEnabled_) return *isEnabled_;
    const auto& defaults = NSUserDefaults::standardUserDefaults();
    return !defaults.objectForKey(ASAdvertisingTrackingEnabledKey) ||
           defaults.boolForKey(ASAdvertisingTrackingEnabledKey);
}

NSUUID ASIdentifierManager::advertisingIdentifier() const {
    if (identifier_) return *identifier_;
    auto& defaults = NSUserDefaults::standardUserDefaults();
    if (auto kept = NSUUID::UUIDWithString(defaults.stringForKey(ASAdvertisingIdentifierKey).text())) return *kept;
    auto fresh = NSUUID::UUID();
    if (fresh) defaults.setObject(NSString(fresh->UUIDString()), ASAdvertisingIdentifierKey);
    return fresh.value_or(NSUUID());
}

}  // namespace flarebox
