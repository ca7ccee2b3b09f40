#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Core/Logging.h>
#include <Flarebox/Views/FlareboxView.h>
#include <UIKit/UIDevice.h>

#include <algorithm>
#include <iterator>

namespace flarebox {
namespace {

/// By event type.
constexpr const char* actions[] = {"2d", "3d", "video", "flarebox", "coupon"};

/// Whole seconds for which the tab has been open; 0 where the clock was turned back since.
std::int32_t secondsOpened() {
    const NSDate opened = FlareboxManager::sharedInstance().flareboxOpenedDate();
    if (!opened) return 0;
    constexpr double longest = INT32_MAX;
    return static_cast<std::int32_t>(std::clamp(NSDate::date().timeIntervalSinceDate(opened), 0.0, longest));
}

void fillAsset(FXEngagementData& event, const FXAssetInfo& asset) {
    event.setAdvertiser(asset.advertiserUid());
    event.setAsset(asset.uid());
    event.setCampaign(asset.campaignUid());
}

void fillSession(FXEngagementData& event, const FXSessionInfo& session) {
    if (session.age()) event.setAge(session.age().stringValue());
    event.setCountry(session.country());
    event.setDeveloper(session.developerUid());
    event.setDeviceId(session.deviceId());
    event.setIpAddr(session.ipAddr());
    event.setSession(session.uid());
    event.setSex(session.sex());
}

void fillSurroundings(FXEngagementData& event) {
    const FlareboxConfig& config = FlareboxConfig::defaultConfig();
    event.setDesktop("false");
    event.setGeneric("false");
    event.setDuration(std::to_string(secondsOpened()));
    event.setGame(config.gameUID());
    event.setMobile("true");
    event.setOs("iOS");
    event.setOsVer(UIDevice::currentDevice().systemVersion());
    event.setVersion(config.gameVersion());
}

}  // namespace

void FlareboxView::sendEngagementEvent(EngagementAction type) {
    const Ref<FXSessionInfo> session = FlareboxManager::sharedInstance().sessionInfo();
    if (!currentAsset_ || !session) return;
    if (type >= std::size(actions))
        return errorLog("There is no engagement event of type %d", static_cast<std::uint64_t>(type));

    const Ref<FXEngagementData> event = FXEngagementData::init();
    event->setAction(actions[type]);
    fillAsset(*event, *currentAsset_);
    fillSession(*event, *session);
    fillSurroundings(*event);
    // Nobody hears of what happens offline, and nothing is kept to be told later.
    if (!isNetworkConnected()) return;

    infoLog("Send engagement event: %@", event->action());
    FlareboxManager::sharedInstance().sendEngagement(event, [](const Ref<NSError>& error) {
        if (error)
            errorLog("%@", error->localizedDescription());
        else
            infoLog("Send engagement event successful");
    });
}

}  // namespace flarebox
