#include <AVFoundation/AVPlayer.h>
#include <AdSupport/ASIdentifierManager.h>
#include <Flarebox/C/Guard.h>
#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Managers/FlareboxManager.h>
#include <Foundation/LogSink.h>
#include <Foundation/NSFileManager.h>

namespace flarebox::c {
namespace {

thread_local std::string lastError;

/// The first version ended with `log_level`.
constexpr std::size_t sizeOfConfiguration =
    offsetof(flarebox_configuration, log_level) + sizeof(flarebox_configuration::log_level);

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

/// What of the configuration is out of range, or null.
const char* faultOf(const flarebox_configuration& configuration) {
    if (configuration.age < 0) return "the age has to be 0 or more";
    if (configuration.refresh_seconds < 0) return "refresh_seconds have to be 0 or more";
    const bool isLevel = configuration.log_level >= LogLevelInfo && configuration.log_level <= LogLevelError;
    if (configuration.enable_logging && !isLevel) return "the log_level has to be from 1 to 3";
    const NSURL address = configuration.api_url ? NSURL::URLWithString(configuration.api_url) : NSURL();
    const bool isWeb = (address.scheme() == "http" || address.scheme() == "https") && !address.host().empty();
    if (configuration.api_url && !isWeb) return "the api_url is no address of http or https";
    return nullptr;
}

/// False where another folder is in use.
bool configureResources(const char* folder) {
    static std::string configured;
    if (!NSBundle::bundleWithIdentifier(flareboxBundleIdentifier) && folder) {
        NSBundle::registerBundle(flareboxBundleIdentifier, folder);
        configured = folder;
    }
    flareboxBundle();
    return configured == (folder ? folder : "");
}

/// False, and everything is as it was, where another address is in use.
bool configureAddress(const char* address) {
    constexpr const char* key = "API_URL";
    NSBundle& bundle = flareboxBundle();
    const Value former = bundle.objectForInfoDictionaryKey(key);
    if (address)
        bundle.setInfoDictionaryValue(key, address);
    else
        bundle.resetInfoDictionaryValue(key);
    if (!FlareboxManager::hasSharedInstance() || bundle.objectForInfoDictionaryKey(key) == former) return true;
    bundle.setInfoDictionaryValue(key, former);
    return false;
}

flarebox_result configurePlaces(const flarebox_configuration& configuration) {
    if (!configureResources(configuration.resources))
        return failed(FLAREBOX_FAILED, "the folder of resources is fixed by the first configuration, or tab");
    if (!configureAddress(configuration.api_url))
        return failed(FLAREBOX_FAILED, "the api_url is fixed by the first request");
    NSFileManager::defaultManager().setDocumentsDirectory(configuration.documents ? configuration.documents : "");
    return FLAREBOX_OK;
}

}  // namespace

bool copyTexts(const char* const* from, std::size_t count, std::vector<std::string>& to) {
    const bool areTexts =
        (from || count == 0) && std::all_of(from, from + count, [](const char* text) { return text && *text; });
    if (areTexts)
        to.assign(from, from + count);
    else
        failed(FLAREBOX_INVALID_ARGUMENT, "a text of the list is null or empty, or the list itself is null");
    return areTexts;
}

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
        if (!copyStruct(configuration, sizeOfConfiguration, known)) return FLAREBOX_INVALID_ARGUMENT;
        if (const char* fault = faultOf(known)) return failed(FLAREBOX_INVALID_ARGUMENT, fault);
        if (const flarebox_result result = configurePlaces(known)) return result;
        FlareboxConfig& config = FlareboxConfig::defaultConfig();
        config.configFlareboxWithUserSession(playerOf(known), text(known.game_uid), text(known.game_version),
                                             known.enable_logging, known.log_level);
        config.setTimeRefresh(known.refresh_seconds);
        return FLAREBOX_OK;
    });
}

flarebox_result flarebox_set_log_sink(flarebox_log_sink sink, void* context) {
    const auto write = [sink, context](LogLevel level, std::string_view message) {
        sink(context, static_cast<std::int32_t>(level), std::string(message).c_str());
    };
    return withoutExceptions([&] {
        LogSink::set(sink ? LogSink::Write(write) : nullptr);
        return FLAREBOX_OK;
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

bool flarebox_is_muted(void) {
    bool isMuted = false;
    guarded([&] {
        isMuted = AVPlayer::isEverythingMuted();
        return FLAREBOX_OK;
    });
    return isMuted;
}

flarebox_result flarebox_set_languages(const char* const* languages, std::size_t count) {
    return guarded([&] {
        std::vector<std::string> known;
        if (!copyTexts(languages, count, known)) return FLAREBOX_INVALID_ARGUMENT;
        NSBundle::setPreferredLanguages(std::move(known));
        return FLAREBOX_OK;
    });
}

flarebox_result flarebox_set_tracking_allowed(bool allowed) {
    return guarded([&] {
        ASIdentifierManager::sharedManager().setAdvertisingTrackingEnabled(allowed);
        return FLAREBOX_OK;
    });
}

}  // extern "C"
