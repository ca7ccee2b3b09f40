#include <AdSupport/ASIdentifierManager.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSUserDefaults.h>

#include <gtest/gtest.h>

#include "Tests/Support/TemporaryDirectory.h"

namespace flarebox {
namespace {

class AdSupport : public ::testing::Test {
protected:
    AdSupport() { defaults.setFile(folder.path("one.plist")); }
    ~AdSupport() override {
        manager.setAdvertisingIdentifier({});
        manager.setAdvertisingTrackingEnabled({});
        defaults.setFile("");
        MainQueue::shared().removeAll();
    }

    testing::TemporaryDirectory folder;
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    ASIdentifierManager& manager = ASIdentifierManager::sharedManager();
};

TEST_F(AdSupport, KeepsOneRandomIdentifierForEachApplication) {
    NSUUID first = manager.advertisingIdentifier();
    EXPECT_NE(first, NSUUID());
    EXPECT_EQ(manager.advertisingIdentifier(), first);
    defaults.setFile(folder.path("two.plist"));
    EXPECT_NE(manager.advertisingIdentifier(), first);
    defaults.setFile(folder.path("one.plist"));
    EXPECT_EQ(manager.advertisingIdentifier(), first);
    defaults.setObject("damaged", ASAdvertisingIdentifierKey);
    NSUUID second = manager.advertisingIdentifier();
    EXPECT_NE(second, first);
    EXPECT_EQ(defaults.stringForKey(ASAdvertisingIdentifierKey).string(), second.UUIDString());
}

TEST_F(AdSupport, TracksUntilSwitchedOff) {
    EXPECT_TRUE(manager.isAdvertisingTrackingEnabled());
    defaults.setObject(false, ASAdvertisingTrackingEnabledKey);
    EXPECT_FALSE(manager.isAdvertisingTrackingEnabled());
    manager.setAdvertisingTrackingEnabled(true);
    EXPECT_TRUE(manager.isAdvertisingTrackingEnabled());
    manager.setAdvertisingTrackingEnabled({});
    EXPECT_FALSE(manager.isAdvertisingTrackingEnabled());
}

TEST_F(AdSupport, UsesTheHostsIdentifierWithoutKeepingIt) {
    manager.setAdvertisingIdentifier(NSUUID());
    EXPECT_EQ(manager.advertisingIdentifier().UUIDString(), "00000000-0000-0000-0000-000000000000");
    EXPECT_FALSE(defaults.objectForKey(ASAdvertisingIdentifierKey));
    manager.setAdvertisingIdentifier({});
    EXPECT_NE(manager.advertisingIdentifier(), NSUUID());
}

}  // namespace
}  // namespace flarebox
