#include <Networking/AFImageDownloader.h>

#include <Foundation/Shutdown.h>
#include <Networking/AFImageResponseSerializer.h>
#include <Networking/NetworkError.h>

#include <utility>

namespace flarebox {

const ClassInfo& AFImageDownloader::staticClass() {
    static const ClassInfo info("AFImageDownloader", &NSObject::staticClass(), nullptr);
    return info;
}

AFImageDownloader::AFImageDownloader() : manager_(AFURLSessionManager::manager()) {
    auto serializer = AFImageResponseSerializer::serializer();
    serializer->setMaximumPixelSide(maximumPixelSide);
    manager_->setResponseSerializer(serializer);
    manager_->setMaximumResponseLength(UIImage::maximumDataLength);
}

AFImageDownloader::~AFImageDownloader() = default;

AFImageDownloader& AFImageDownloader::defaultInstance() {
    static AFImageDownloader* downloader = make<AFImageDownloader>().leak();
    return *downloader;
}

void AFImageDownloader::downloadImageForURLRequest(const Ref<NSURLRequest>& request, Success success, Failure failure) {
    const std::string address = request ? request->URL().absoluteString() : std::string();
    if (auto image = cache_.imageWithIdentifier(address)) {
        if (success) success(request, nullptr, image);
        return;
    }
    if (!std::exchange(endsAtShutdown_, true)) {
        Shutdown::addHandler([self = Weak<AFImageDownloader>(this)] {
            if (auto downloader = self.lock()) downloader->forgetEverything();
        });
    }
    auto& waiters = waiters_[address];
    waiters.push_back({request, std::move(success), std::move(failure)});
    if (waiters.size() > 1) return;

    auto task = manager_->dataTaskWithRequest(
        request, [self = Ref<AFImageDownloader>(this), address](auto& response, auto& object, auto& error) {
            self->arrived(address, response, object, error);
        });
    task->resume();
}

void AFImageDownloader::arrived(const std::string& address, const Ref<NSHTTPURLResponse>& response, const Value& object,
                                const Ref<NSError>& error) {
    Ref<UIImage> image(object.object<UIImage>());
    Ref<NSError> reason = error;
    if (!image && !reason) {
        reason =
            networkError(NSURLErrorCannotDecodeContentData, "Request failed: the answer holds no picture", address);
    }
    if (image) cache_.addImage(image, address);
    // A callback may ask for the same picture again.
    auto waiters = waiters_.extract(address);
    if (!waiters) return;
    for (auto& waiter : waiters.mapped()) {
        if (image && waiter.success) waiter.success(waiter.request, response, image);
        if (!image && waiter.failure) waiter.failure(waiter.request, response, reason);
    }
}

void AFImageDownloader::forgetEverything() {
    endsAtShutdown_ = false;
    cache_.removeAllImages();
    auto dropped = std::exchange(waiters_, {});
}

}  // namespace flarebox
