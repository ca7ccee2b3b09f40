#include <Networking/AFImageDownloader.h>

#include <Foundation/LogSink.h>
#include <Foundation/MainQueue.h>
#include <Foundation/Shutdown.h>
#include <Foundation/TurnMeter.h>
#include <Networking/NetworkError.h>
#include <Networking/WorkerThread.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

namespace flarebox {
namespace {

bool isLargeEnough(const UIImage& image, const UIImage::Room& room) {
    return image.pixelSize().holds(room.sizeOf(image.wholeSize()));
}

UIImage::Room bounded(UIImage::Room room) {
    room.longestSide = std::min<CGFloat>(room.longestSide, AFImageDownloader::maximumPixelSide);
    return room;
}

/// Without memory for it now the picture stays as it is.
Ref<UIImage> sizedWherePossible(const Ref<UIImage>& image, const UIImage::Room& room) {
    try {
        return image->sizedFor(room);
    } catch (const std::bad_alloc&) {
        LogSink::write(LogLevelError, "There is not enough memory for another size of " + image->description());
        return image;
    }
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

void AFImageDownloader::downloadImageForURLRequest(const Ref<NSURLRequest>& request, const Room& room, Success success,
                                                   Failure failure) {
    const Room allowed = bounded(room);
    const std::string address = request ? request->URL().absoluteString() : std::string();
    if (const auto image = imageAtHand(address); image && image->canBeSizedFor(allowed)) {
        if (!success) return;
        if (isLargeEnough(*image, allowed)) return success(request, nullptr, image);
        return resizeImage(image, allowed, [request, success = std::move(success)](const Ref<UIImage>& resized) {
            success(request, nullptr, resized);
        });
    }
    endAtShutdown();
    std::vector<Waiter>& waiters = loads_[address];
    waiters.push_back({request, allowed, std::move(success), std::move(failure)});
    if (waiters.size() > 1) return;
    const auto serializer = AFImageResponseSerializer::serializer();
    serializer->setRoom(allowed);
    auto task = manager_->dataTaskWithRequest(
        request, serializer, [self = Ref<AFImageDownloader>(this), address](auto& response, auto& object, auto& error) {
            self->arrived(address, response, object, error);
        });
    task->resume();
}

void AFImageDownloader::setImage(const Ref<UIImage>& image, const NSURL& address) {
    if (!image) {
        given_.erase(address.absoluteString());
        return;
    }
    endAtShutdown();
    given_[address.absoluteString()] = image;
}

Ref<UIImage> AFImageDownloader::imageAtHand(const std::string& address) {
    const auto given = given_.find(address);
    return given == given_.end() ? cache_.imageWithIdentifier(address) : given->second;
}

void AFImageDownloader::endAtShutdown() {
    if (std::exchange(endsAtShutdown_, true)) return;
    Shutdown::addHandler([self = Weak<AFImageDownloader>(this)] {
        if (auto downloader = self.lock()) downloader->forgetEverything();
    });
}

void AFImageDownloader::resizeImage(const Ref<UIImage>& image, const Room& room,
                                    std::function<void(const Ref<UIImage>&)> completion) {
    // What is called back, and what it holds, is touched and released on the main thread alone.
    WorkerThread::shared()->async([self = Ref<AFImageDownloader>(this), image, room = bounded(room),
                                   completion = std::move(completion),
                                   activity = std::make_shared<MainQueue::Activity>()]() mutable {
        Ref<UIImage> resized = sizedWherePossible(image, room);
        dispatch_async_main([self = std::move(self), resized = std::move(resized), completion = std::move(completion)] {
            TurnMeter::Part part("answers");
            self->cache_.replaceSmaller(resized);
            completion(resized);
        });
    });
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
    for (auto& waiter : load.mapped()) {
        if (image && !isLargeEnough(*image, waiter.room)) {
            downloadImageForURLRequest(waiter.request, waiter.room, std::move(waiter.success),
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
    given_.clear();
    auto dropped = std::exchange(loads_, {});
}

}  // namespace flarebox
