#include <Networking/AFImageDownloader.h>

#include <Foundation/Shutdown.h>
#include <Networking/NetworkError.h>

#include <algorithm>
#include <utility>

namespace flarebox {
namespace {

bool isLargeEnough(const UIImage& image, int pixelSide) {
    return !image.isReduced() || std::max(image.pixelWidth(), image.pixelHeight()) >= pixelSide;
}

}  // namespace

const ClassInfo& AFImageDownloader::staticClass() {
    static const ClassInfo info("AFImageDownloader", &NSObject::staticClass(), nullptr);
    return info;
}

AFImageDownloader::AFImageDownloader() : manager_(AFURLSessionManager::manager()) {
    manager_->setMaximumResponseLength(UIImage::maximumDataLength);
}

AFImageDownloader::~AFImageDownloader() = default;

AFImageDownloader& AFImageDownloader::defaultInstance() {
    static AFImageDownloader* downloader = make<AFImageDownloader>().leak();
    return *downloader;
}

void AFImageDownloader::downloadImageForURLRequest(const Ref<NSURLRequest>& request, int pixelSide, Success success,
                                                   Failure failure) {
    pixelSide = std::clamp(pixelSide, 1, maximumPixelSide);
    const std::string address = request ? request->URL().absoluteString() : std::string();
    if (auto image = cache_.imageWithIdentifier(address); image && isLargeEnough(*image, pixelSide)) {
        if (success) success(request, nullptr, image);
        return;
    }
    if (!std::exchange(endsAtShutdown_, true)) {
        Shutdown::addHandler([self = Weak<AFImageDownloader>(this)] {
            if (auto downloader = self.lock()) downloader->forgetEverything();
        });
    }
    Load& load = loads_[address];
    load.waiters.push_back({request, pixelSide, std::move(success), std::move(failure)});
    if (load.serializer) {
        // In time unless the picture is being decoded already.
        load.serializer->setMaximumPixelSide(std::max(load.serializer->maximumPixelSide(), pixelSide));
        return;
    }
    load.serializer = AFImageResponseSerializer::serializer();
    load.serializer->setMaximumPixelSide(pixelSide);
    auto task = manager_->dataTaskWithRequest(
        request, load.serializer,
        [self = Ref<AFImageDownloader>(this), address](auto& response, auto& object, auto& error) {
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
    auto load = loads_.extract(address);
    if (!load) return;
    for (auto& waiter : load.mapped().waiters) {
        if (image && !isLargeEnough(*image, waiter.pixelSide)) {
            downloadImageForURLRequest(waiter.request, waiter.pixelSide, std::move(waiter.success),
                                       std::move(waiter.failure));
            continue;
        }
        if (image && waiter.success) waiter.success(waiter.request, response, image);
        if (!image && waiter.failure) waiter.failure(waiter.request, response, reason);
    }
}

void AFImageDownloader::forgetEverything() {
    endsAtShutdown_ = false;
    cache_.removeAllImages();
    auto dropped = std::exchange(loads_, {});
}

}  // namespace flarebox
