#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Managers/FlareboxManager.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSAssertionHandler.h>
#include <Foundation/NSBundle.h>

#include <source_location>
#include <utility>

namespace flarebox {

const char* const kApiErrorDomain = "SWGGamesApiErrorDomain";
const int kApiMissingParamErrorCode = 234513;

namespace {

constexpr std::int64_t assetPageSize = 20;
/// Several times what is asked for. Each asset may start a download with a file of its own, and the host's descriptors
/// are not the service's to use up.
constexpr std::size_t mostAssets = 100;

std::string replacedAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

Ref<NSError> missingParameterError(std::string_view name) {
    const NSString format = NSBundle::mainBundle()->localizedStringForKey("Missing required parameter '%@'");
    return NSError::errorWithDomain(kApiErrorDomain, kApiMissingParamErrorCode,
                                    replacedAll(format.string(), "%@", name));
}

Ref<NSError> tooManyAssetsError() {
    return NSError::errorWithDomain(NSURLErrorDomain, NSURLErrorDataLengthExceedsMaximum,
                                    "The list holds more than " + std::to_string(mostAssets) + " assets.");
}

/// Asserts that a parameter is there. Where the assertion handler returns, a missing one is handed to `fail` as an
/// error.
template <class Fail>
bool requireParameter(bool present, std::string_view name, const Fail& fail,
                      std::source_location location = std::source_location::current()) {
    if (assertParameter(present, name, location)) return true;
    fail(missingParameterError(name));
    return false;
}

NSString pathOf(std::string_view pathTemplate) {
    return replacedAll(std::string(pathTemplate), ".{format}", ".json");
}

NSDictionary gameHeaders(const FlareboxConfig& config) {
    NSMutableDictionary headers = NSMutableDictionary::dictionary();
    headers.setObject(config.gameUID(), "Game-UID");
    headers.setObject(config.gameVersion(), "Game-Version");
    return headers;
}

}  // namespace

void FlareboxManager::send(const NSString& method, const NSString& path, const NSDictionary& params,
                           const NSDictionary& headers, Answer answer) {
    dataTaskWithRequest(requestWithMethod(method, path, params, headers), [answer = std::move(answer)](
                                                                              const Ref<NSHTTPURLResponse>&,
                                                                              const Value& object,
                                                                              const Ref<NSError>& error) {
        answer(object, error);
    })->resume();
}

void FlareboxManager::createSesstion(
    const std::function<void(const Ref<FXSessionInfo>&, const Ref<NSError>&)>& completion) {
    if (!isMainThread()) return dispatch_async_main([this, completion] { createSesstion(completion); });
    const FlareboxConfig& config = FlareboxConfig::defaultConfig();
    const auto fail = [&](const Ref<NSError>& error) {
        if (completion) completion(nullptr, error);
    };
    if (!requireParameter(bool(config.gameUID()), "gameUID", fail)) return;
    if (!requireParameter(bool(config.gameVersion()), "gameVersion", fail)) return;
    if (!requireParameter(bool(config.sessionEdit()), "sessionData", fail)) return;

    send("POST", pathOf("/sessions/"), config.sessionEdit()->toDictionary(), gameHeaders(config),
         [completion](const Value& answer, const Ref<NSError>& error) {
             if (!completion) return;
             if (error) return completion(nullptr, error);
             completion(FXSessionInfo::initWithDictionary(answer.as<NSDictionary>()), nullptr);
         });
}

void FlareboxManager::loadGameCommonAssets(
    const std::function<void(const std::shared_ptr<AssetList>&, const Ref<NSError>&)>& completion) {
    if (!isMainThread()) return dispatch_async_main([this, completion] { loadGameCommonAssets(completion); });
    const FlareboxConfig& config = FlareboxConfig::defaultConfig();
    const auto fail = [&](const Ref<NSError>& error) {
        if (completion) completion(nullptr, error);
    };
    if (!requireParameter(bool(config.gameUID()), "gameUID", fail)) return;
    if (!requireParameter(bool(config.gameVersion()), "gameVersion", fail)) return;

    send("GET", pathOf("/game/common-assets/"), NSDictionary{{"limit", assetPageSize}}, gameHeaders(config),
         [completion](const Value& answer, const Ref<NSError>& error) {
             if (!completion) return;
             if (error) return completion(nullptr, error);
             const NSArray elements = answer.as<NSArray>();
             if (elements.count() > mostAssets) return completion(nullptr, tooManyAssetsError());
             auto assets = std::make_shared<AssetList>();
             for (const Value& element : elements) {
                 assets->push_back(FXAssetInfo::initWithDictionary(element.as<NSDictionary>()));
             }
             completion(assets, nullptr);
         });
}

void FlareboxManager::sendEngagement(const Ref<FXEngagementData>& engagement,
                                     const std::function<void(const Ref<NSError>&)>& completion) {
    if (!isMainThread())
        return dispatch_async_main([this, engagement, completion] { sendEngagement(engagement, completion); });
    const auto fail = [&](const Ref<NSError>& error) {
        if (completion) completion(error);
    };
    if (!requireParameter(bool(engagement), "data", fail)) return;

    send("POST", pathOf("/kafka/engagement/"), engagement->toDictionary(), nullptr,
         [completion](const Value&, const Ref<NSError>& error) {
             if (completion) completion(error);
         });
}

void FlareboxManager::saveCoupon(const Ref<FXCoupon>& coupon,
                                 const std::function<void(const Ref<FXCoupon>&, const Ref<NSError>&)>& completion) {
    if (!isMainThread()) return dispatch_async_main([this, coupon, completion] { saveCoupon(coupon, completion); });
    const auto fail = [&](const Ref<NSError>& error) {
        if (completion) completion(nullptr, error);
    };
    if (!requireParameter(bool(coupon), "couponData", fail)) return;

    send("POST", pathOf("/coupons/"), coupon->toDictionary(), nullptr,
         [completion](const Value& answer, const Ref<NSError>& error) {
             if (!completion) return;
             if (error) return completion(nullptr, error);
             completion(FXCoupon::initWithDictionary(answer.as<NSDictionary>()), nullptr);
         });
}

}  // namespace flarebox
