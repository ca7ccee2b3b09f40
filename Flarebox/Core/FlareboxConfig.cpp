#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Core/TurnLog.h>
#include <Foundation/MainQueue.h>

namespace flarebox {

std::int32_t refreshTimeIntervalDefault = 180;

const ClassInfo& FlareboxConfig::staticClass() {
    static const Property properties[] = {
        {"showFlareboxButton", "TB",
         [](const NSObject& object) { return Value(static_cast<const FlareboxConfig&>(object).showFlareboxButton()); },
         [](NSObject& object, const Value& value) {
             static_cast<FlareboxConfig&>(object).setShowFlareboxButton(value.as<NSNumber>().boolValue());
         }},
    };
    static const ClassInfo info("FlareboxConfig", &NSObject::staticClass(), nullptr, {.properties = properties});
    return info;
}

FlareboxConfig& FlareboxConfig::defaultConfig() {
    // Never destroyed: threads that end after main may still log.
    static FlareboxConfig* const shared = [] {
        Ref<FlareboxConfig> config = make<FlareboxConfig>();
        config->setupDefaultConfig();
        logLongTurns();
        return config.leak();
    }();
    return *shared;
}

void FlareboxConfig::setupDefaultConfig() {
    showFlareboxButton_ = true;
    initializeOnStart_ = true;
}

void FlareboxConfig::configFlareboxWithUserSession(const Ref<FXUserSession>& userSession, const NSString& gameUID,
                                                   const NSString& gameVersion, bool enableLogging,
                                                   std::uint64_t logLevel) {
    if (!requireMainThread("FlareboxConfig::configFlareboxWithUserSession")) return;
    setSessionEdit(userSession);
    setGameUID(gameUID);
    setGameVersion(gameVersion);
    setEnableLogging(enableLogging);
    setLogLevel(logLevel);
}

void FlareboxConfig::setGameUID(const NSString& gameUID) {
    if (requireMainThread("FlareboxConfig::setGameUID")) gameUID_ = gameUID;
}

void FlareboxConfig::setGameVersion(const NSString& gameVersion) {
    if (requireMainThread("FlareboxConfig::setGameVersion")) gameVersion_ = gameVersion;
}

void FlareboxConfig::setInitializeOnStart(bool initialize) {
    if (requireMainThread("FlareboxConfig::setInitializeOnStart")) initializeOnStart_ = initialize;
}

void FlareboxConfig::setSessionInfo(const Ref<FXSessionInfo>& sessionInfo) {
    if (requireMainThread("FlareboxConfig::setSessionInfo")) sessionInfo_ = sessionInfo;
}

void FlareboxConfig::setSessionEdit(const Ref<FXUserSession>& sessionEdit) {
    if (requireMainThread("FlareboxConfig::setSessionEdit")) sessionEdit_ = sessionEdit;
}

void FlareboxConfig::setRefreshTimeInterval(std::int32_t seconds) {
    if (requireMainThread("FlareboxConfig::setRefreshTimeInterval")) refreshTimeInterval_ = seconds;
}

void FlareboxConfig::setShowFlareboxButton(bool show) {
    if (!requireMainThread("FlareboxConfig::setShowFlareboxButton")) return;
    willChangeValueForKey("showFlareboxButton");
    showFlareboxButton_ = show;
    didChangeValueForKey("showFlareboxButton");
}

void FlareboxConfig::setTheme(const Ref<Theme>& theme) {
    if (!requireMainThread("FlareboxConfig::setTheme")) return;
    theme_ = theme ? theme : make<Theme>();
    UIPalette::setCurrent(theme_->palette());
}

std::int32_t FlareboxConfig::getTimeRefresh() const {
    return refreshTimeInterval_ > 0 ? refreshTimeInterval_ : refreshTimeIntervalDefault;
}

}  // namespace flarebox
