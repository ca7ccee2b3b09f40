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
/// Pictures are decoded off the main thread, those above 4096 x 4096 pixels or 8 MiB refused, and made no larger than
/// they are shown. Main thread only.
class AFImageDownloader : public NSObject {
    FLAREBOX_CLASS(AFImageDownloader)
public:
    /// `response` is null for a picture from the cache.
    using Success = std::function<void(const Ref<NSURLRequest>& request, const Ref<NSHTTPURLResponse>& response,
                                       const Ref<UIImage>& image)>;
    /// `response` is null when none arrived; `error` is never null.
    using Failure = std::function<void(const Ref<NSURLRequest>& request, const Ref<NSHTTPURLResponse>& response,
                                       const Ref<NSError>& error)>;

    /// No picture gets more pixels than this each way, whatever room there is.
    static constexpr int maximumPixelSide = 2048;
    using Room = UIImage::Room;

    AFImageDownloader();
    ~AFImageDownloader() override;
    /// The one behind the image views. A shutdown empties it.
    static AFImageDownloader& defaultInstance();

    /// Calls one of the two, once and with this very request: at once for a picture from the cache, so that a view that
    /// is shown again does not flicker, on the main queue otherwise. Requests for one address share the transfer of the
    /// first. Either may be null. The picture has the pixels that it takes in the room, or more of them where somebody
    /// else wants it larger; one at hand that has fewer is decoded anew, or loaded anew where its bytes were not kept.
    void downloadImageForURLRequest(const Ref<NSURLRequest>& request, const Room& room, Success success,
                                    Failure failure);
    /// The picture in the pixels that it takes in the room, or the nearest that can be had, made on the decoder thread.
    /// Where it is larger than the one at hand it takes its place.
    void resizeImage(const Ref<UIImage>& image, const Room& room, std::function<void(const Ref<UIImage>&)> completion);

    /// The picture of an address, which is not downloaded from now on. It stays, beside the cache, until it is taken
    /// back with a null picture; a shutdown forgets it.
    void setImage(const Ref<UIImage>& image, const NSURL& address);

    AFAutoPurgingImageCache& imageCache() { return cache_; }
    /// For the address of a service's own certificates and the like.
    AFURLSessionManager& sessionManager() { return *manager_; }

private:
    struct Waiter {
        Ref<NSURLRequest> request;
        Room room;
        Success success;
        Failure failure;
    };
    void arrived(const std::string& address, const Ref<NSHTTPURLResponse>& response, const Value& object,
                 const Ref<NSError>& error);
    Ref<UIImage> imageAtHand(const std::string& address);
    void endAtShutdown();
    void forgetEverything();

    Ref<AFURLSessionManager> manager_;
    AFAutoPurgingImageCache cache_;
    /// By address: pictures that are never downloaded.
    std::unordered_map<std::string, Ref<UIImage>> given_;
    /// By address: those who wait for the transfer.
    std::unordered_map<std::string, std::vector<Waiter>> loads_;
    bool endsAtShutdown_ = false;
};

}  // namespace flarebox
