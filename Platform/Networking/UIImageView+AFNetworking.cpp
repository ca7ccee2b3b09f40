#include <Networking/UIImageView+AFNetworking.h>

#include <Foundation/MainQueue.h>
#include <UIKit/UIScreen.h>

#include <algorithm>
#include <string>
#include <utility>

namespace flarebox {
namespace {

void showIfStillWanted(const Weak<UIImageView>& weakView, const Ref<NSURLRequest>& request, const Ref<UIImage>& image) {
    auto view = weakView.lock();
    if (!view || view->imageTask() != Ref<NSObject>(request)) return;
    view->setImageTask(nullptr);
    view->setImage(image);
}

/// The pixels that the view has for a picture; as many as the screen has while the view is nowhere yet.
UIImage::Room roomOf(const UIImageView& view) {
    if (!view.bounds().isEmpty()) return view.room();
    const UIScreen& screen = UIScreen::mainScreen();
    const CGSize size = screen.bounds().size;
    const CGFloat side = std::max(size.width, size.height) * screen.scale();
    return {.pixels = {side, side}};
}

/// Gets the picture that the view shows in another size: it is made of what is at hand, or loaded anew.
void resize(UIImageView& view, const Ref<NSURLRequest>& request, const Ref<UIImage>& image, const UIImage::Room& room) {
    AFImageDownloader& downloader = AFImageDownloader::defaultInstance();
    const Weak<UIImageView> weakView(&view);
    if (image->canBeSizedFor(room)) {
        return downloader.resizeImage(image, room, [weakView](const Ref<UIImage>& resized) {
            if (auto shown = weakView.lock()) shown->takeSized(resized);
        });
    }
    // Later, because another view may have loaded it by now, and this one is being drawn.
    dispatch_async_main([&downloader, request, room, weakView, image] {
        downloader.downloadImageForURLRequest(
            request, room,
            [weakView, image](auto&, auto&, const Ref<UIImage>& loaded) {
                auto shown = weakView.lock();
                if (shown && shown->image() == image) shown->setImage(loaded);
            },
            nullptr);
    });
}

/// Has a picture that has just arrived larger than the view draws it made smaller off the main thread first.
AFImageDownloader::Success sizedFor(UIImageView& view, AFImageDownloader::Success success) {
    return [weakView = Weak<UIImageView>(&view), success = std::move(success)](auto& request, auto& response,
                                                                               auto& image) {
        const auto shown = weakView.lock();
        const bool fits =
            !shown || shown->bounds().isEmpty() || image->pixelSize() == shown->room().sizeOf(image->wholeSize());
        if (!response || fits) return success(request, response, image);
        AFImageDownloader::defaultInstance().resizeImage(
            image, shown->room(),
            [success, request = Ref<NSURLRequest>(request), response = Ref<NSHTTPURLResponse>(response)](
                const Ref<UIImage>& resized) { success(request, response, resized); });
    };
}

}  // namespace

void setImageWithURLRequest(UIImageView& view, const Ref<NSURLRequest>& request, const Ref<UIImage>& placeholder,
                            AFImageDownloader::Success success, AFImageDownloader::Failure failure) {
    if (placeholder) view.setImage(placeholder);
    view.setImageTask(request);
    view.setSizer([request](UIImageView& shown, const Ref<UIImage>& image, const UIImage::Room& room) {
        resize(shown, request, image, room);
    });
    if (!success) {
        success = [weakView = Weak<UIImageView>(&view)](auto& loaded, auto&, auto& image) {
            showIfStillWanted(weakView, loaded, image);
        };
    }
    AFImageDownloader& downloader = AFImageDownloader::defaultInstance();
    // Shown in whatever size it is at hand; the view asks for another one if it needs that.
    const std::string address = request ? request->URL().absoluteString() : std::string();
    if (const auto image = downloader.imageCache().imageWithIdentifier(address))
        return success(request, nullptr, image);
    downloader.downloadImageForURLRequest(request, roomOf(view), sizedFor(view, std::move(success)),
                                          std::move(failure));
}

}  // namespace flarebox
