#include <AVFoundation/AVPlayer.h>
#include <Flarebox/C/Guard.h>
#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Foundation/LogSink.h>
#include <Foundation/NSFileManager.h>

namespace flarebox::c {
namespace {

thread_local std::string lastError;

NSString text(const char* characters) {
    return characters ? NSString(characters) : NSString();
}

Ref<FXUserSession> playerOf(const flarebox_configuration& configuration) {
    const Ref<FXUserSession> player = FXUserSession::init();
    player->setFirstName(text(configuration.first_name));
    player->setLastName(text(configuration.last_name));
    player->setSex(text(configuration.sex));
    player->setState(text(configuration.state));
    player->setCity(text(configuration.city));
    player->setCountry(text(configuration.country));
    player->setDeviceId(text(configuration.device_id));
    if (configuration.age > 0) player->setAge(NSNumber(configuration.age));
    return player;
}

void configurePlaces(const flarebox_configuration& configuration) {
    if (configuration.resources && !NSBundle::bundleWithIdentifier(flareboxBundleIdentifier))
        NSBundle::registerBundle(flareboxBundleIdentifier, configuration.resources);
    if (configuration.documents) NSFileManager::defaultManager().setDocumentsDirectory(configuration.documents);
    if (configuration.api_url) flareboxBundle().setInfoDictionaryValue("API_URL", configuration.api_url);
}

}  // namespace

flarebox_result failed(flarebox_result result, std::string reason) noexcept {
    lastError = std::move(reason);
    return result;
}

}  // namespace flarebox::c

// The definitions stand where the declarations do: in a namespace they would not take over that they are exported.
using namespace flarebox;
using namespace flarebox::c;

extern "C" {

const char* flarebox_last_error(void) {
    return lastError.c_str();
}

const char* flarebox_version(void) {
    return FLAREBOX_VERSION;
}

flarebox_result flarebox_configure(const flarebox_configuration* configuration) {
    return guarded([&] {
        flarebox_configuration known = FLAREBOX_CONFIGURATION;
        if (!copyStruct(configuration, sizeof known, known)) return FLAREBOX_INVALID_ARGUMENT;
        configurePlaces(known);
        FlareboxConfig& config = FlareboxConfig::defaultConfig();
        config.configFlareboxWithUserSession(playerOf(known), text(known.game_uid), text(known.game_version),
                                             known.enable_logging, known.log_level);
        config.setTimeRefresh(known.refresh_seconds);
        return FLAREBOX_OK;
    });
}

void flarebox_set_log_sink(flarebox_log_sink sink, void* context) {
    if (!sink) return LogSink::set(nullptr);
    LogSink::set([sink, context](LogLevel level, std::string_view message) {
        sink(context, static_cast<std::int32_t>(level), std::string(message).c_str());
    });
}

flarebox_result flarebox_set_theme(const char* file) {
    return guarded([&] {
        Ref<NSError> error;
        const Ref<Theme> theme = file ? Theme::themeWithFile(file, &error) : nullptr;
        if (file && !theme) return failed(FLAREBOX_FAILED, error->localizedDescription());
        FlareboxConfig::defaultConfig().setTheme(theme);
        return FLAREBOX_OK;
    });
}

flarebox_result flarebox_set_muted(bool muted) {
    return guarded([&] {
        AVPlayer::setEverythingMuted(muted);
        return FLAREBOX_OK;
    });
}

}  // extern "C"
