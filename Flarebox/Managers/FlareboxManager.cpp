#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Managers/FlareboxManager.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSUserDefaults.h>
#include <Networking/AFImageDownloader.h>
#include <Networking/AFJSONRequestSerializer.h>
#include <Networking/AFJSONResponseSerializer.h>

#include <atomic>

namespace flarebox {
namespace {

/// Of an answer, in bytes. A list of twenty assets has some twenty thousand; decoding takes up to twenty times the
/// length of the text in memory.
constexpr std::uint64_t longestAnswer = std::uint64_t{4} << 20;
constexpr int pictureErrorCode = 2;
std::atomic<bool> isShared = false;

}  // namespace

const ClassInfo& FlareboxManager::staticClass() {
    static const ClassInfo info("FlareboxManager", &AFHTTPSessionManager::staticClass(), nullptr);
    return info;
}

FlareboxManager& FlareboxManager::sharedInstance() {
    // Never destroyed: the session it carries lasts as long as the process.
    static FlareboxManager* const shared = [] {
        isShared = true;
        const NSString address = flareboxBundle().objectForInfoDictionaryKey("API_URL").as<NSString>();
        return make<FlareboxManager>(NSURL::URLWithString(address)).leak();
    }();
    return *shared;
}

bool FlareboxManager::hasSharedInstance() {
    return isShared;
}

FlareboxManager::FlareboxManager(const NSURL& baseURL) : AFHTTPSessionManager(baseURL) {
    setRequestSerializer(AFJSONRequestSerializer::serializer());
    setResponseSerializer(AFJSONResponseSerializer::serializer());
    setMaximumResponseLength(longestAnswer);
}

bool FlareboxManager::setPicture(const NSURL& address, int width, int height, std::vector<std::uint32_t> pixels,
                                 Ref<NSError>* error) {
    const auto refused = [error](const char* reason) {
        if (error) *error = NSError::errorWithDomain(kApiErrorDomain, pictureErrorCode, reason);
        return false;
    };
    if (!requireMainThread("FlareboxManager::setPicture")) return refused("called on another thread than the main one");
    if (!address) return refused("the picture's address is none");
    const bool isTakenBack = width == 0 && height == 0 && pixels.empty();
    if (width > maximumPictureSide || height > maximumPictureSide)
        return refused("a side of the picture is longer than maximumPictureSide");
    const Ref<UIImage> picture = UIImage::imageWithPixels(width, height, std::move(pixels));
    if (!picture && !isTakenBack) return refused("the picture's sizes do not match the number of its pixels");
    AFImageDownloader::defaultInstance().setImage(picture, address);
    return true;
}

Ref<NSMutableURLRequest> FlareboxManager::requestWithMethod(const NSString& method, const NSString& path,
                                                            const NSDictionary& params, const NSDictionary& headers) {
    const std::string address = baseURL().absoluteString() + path.string();
    Ref<NSMutableURLRequest> request = requestSerializer()->requestWithMethod(method.text(), address, params);
    if (!request) return nullptr;
    request->setTimeoutInterval(
        static_cast<double>(NSUserDefaults::standardUserDefaults().integerForKey("timeoutInterval")));
    for (const auto& [name, value] : headers.entries())
        request->setValueForHTTPHeaderField(value.as<NSString>(), name.as<NSString>().text());
    request->setValueForHTTPHeaderField("application/json", "Accept");
    return request;
}

}  // namespace flarebox
