#pragma once

#include <Foundation/NSURLRequest.h>
#include <Networking/AFAutoPurgingImageCache.h>
#include <Networking/AFImageResponseSerializer.h>
#include <Networking/AFURLSessionManager.h>
#include <UIKit/UIImage.h>

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace flarebox {

/// Loads pictures: from the cache, or by one transfer for an address at a time, however many ask for it.
/// Pictures are decoded off the main thread, those above 64 megapixels or 32 MiB refused, and made no larger than they
/// are shown. Main thread only.
class AFImageDownloader : public NSObject {
    FLAREBOX_CLASS(AFImageDownloader)
public:
    /// `response` is null for a picture from the cache.
    using Success = std::function<void(const Ref<NSURLRequest>& request, const Ref<NSHTTPURLResponse>& response,
                                       const Ref<UIImage>& image)>;
    /// `response` is null when none arrived; `error` is never null.
    using Failure = std::function<void(const Ref<NSURLRequest>& request, const Ref<NSHTTPURLResponse>& response,
                                       const Ref<NSError>& error)>;

    /// No picture gets more pixels than this each way, whatever is asked for.
    static constexpr int maximumPixelSide = 2048;

    AFImageDownloader();
    ~AFImageDownloader() override;
    /// The one behind the image views. A shutdown empties it.
    static AFImageDownloader& defaultInstance();

    /// Calls one of the two, once and with this very request: at once for a picture from the cache, so that a view that
    /// is shown again does not flicker, on the main queue otherwise. Requests for one address share the transfer of the
    /// first. Either may be null. The picture fits into `pixelSide` pixels each way, or comes with more of them where
    /// somebody else wants it larger; a picture at hand that was made smaller than that is loaded again.
    void downloadImageForURLRequest(const Ref<NSURLRequest>& request, int pixelSide, Success success, Failure failure);

    AFAutoPurgingImageCache& imageCache() { return cache_; }
    /// For the address of a service's own certificates and the like.
    AFURLSessionManager& sessionManager() { return *manager_; }

private:
    struct Waiter {
        Ref<NSURLRequest> request;
        int pixelSide;
        Success success;
        Failure failure;
    };
    /// One transfer and those who wait for it.
    struct Load {
        Ref<AFImageResponseSerializer> serializer;
        std::vector<Waiter> waiters;
    };

    void arrived(const std::string& address, const Ref<NSHTTPURLResponse>& response, const Value& object,
                 const Ref<NSError>& error);
    void forgetEverything();

    Ref<AFURLSessionManager> manager_;
    AFAutoPurgingImageCache cache_;
    std::unordered_map<std::string, Load> loads_;
    bool endsAtShutdown_ = false;
};

}  // namespace flarebox
