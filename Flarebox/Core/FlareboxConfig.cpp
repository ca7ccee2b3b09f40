#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Core/TurnLog.h>

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
    setSessionEdit(userSession);
    setGameUID(gameUID);
    setGameVersion(gameVersion);
    setEnableLogging(enableLogging);
    setLogLevel(logLevel);
}

void FlareboxConfig::setShowFlareboxButton(bool show) {
    willChangeValueForKey("showFlareboxButton");
    showFlareboxButton_ = show;
    didChangeValueForKey("showFlareboxButton");
}

std::int32_t FlareboxConfig::getTimeRefresh() const {
    return refreshTimeInterval_ > 0 ? refreshTimeInterval_ : refreshTimeIntervalDefault;
}

}  // namespace flarebox
