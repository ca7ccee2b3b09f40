#include <Networking/UIImageView+AFNetworking.h>

#include <Foundation/MainQueue.h>
#include <Foundation/TurnMeter.h>
#include <Networking/WorkerThread.h>
#include <UIKit/UIScreen.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace flarebox {
namespace {

void showIfStillWanted(const Weak<UIImageView>& weakView, const Ref<NSURLRequest>& request, const Ref<UIImage>& image) {
    auto view = weakView.lock();
    if (!view || view->imageTask() != Ref<NSObject>(request)) return;
    view->setImageTask(nullptr);
    view->setImage(image);
}

/// Pixels each way that the view can show of a picture, now or on a turned screen: in steps, so that a little more of
/// them is no reason to load it again. Of a view without a size as many as the screen has.
int pixelSideOf(const UIImageView& view) {
    constexpr int step = 128;
    const UIScreen& screen = UIScreen::mainScreen();
    const CGSize size = view.bounds().size, around = screen.bounds().size;
    const CGFloat longer = std::max(around.width, around.height), shorter = std::min(around.width, around.height);
    CGFloat side = longer;
    if (size.width > 0 && size.height > 0 && shorter > 0) {
        side = std::max(size.width, size.height) * std::min(2.0, longer / shorter);
        // What fills the view reaches beyond it, how far is not known yet.
        if (view.contentMode() == UIViewContentMode::ScaleAspectFill) side *= 1.5;
    }
    const CGFloat steps = std::ceil(std::min(side * screen.scale(), 1e6) / step);
    return std::max(1, static_cast<int>(steps)) * step;
}

/// Has the copy in which the view is going to draw a picture that has just arrived made off the main thread first.
AFImageDownloader::Success preparedFor(UIImageView& view, AFImageDownloader::Success success) {
    return [weakView = Weak<UIImageView>(&view), success = std::move(success)](auto& request, auto& response,
                                                                               auto& image) {
        const auto shown = weakView.lock();
        if (!response || !shown || shown->bounds().isEmpty()) return success(request, response, image);
        // What is called back, and what it holds, is touched and released on the main thread alone.
        WorkerThread::shared()->async(
            [success = AFImageDownloader::Success(success), request = Ref<NSURLRequest>(request),
             response = Ref<NSHTTPURLResponse>(response), image = Ref<UIImage>(image), pixels = shown->pixelsOf(*image),
             activity = std::make_shared<MainQueue::Activity>()]() mutable {
                image->prepareResampled(pixels.width, pixels.height);
                dispatch_async_main([success = std::move(success), request = std::move(request),
                                     response = std::move(response), image = std::move(image)] {
                    TurnMeter::Part part("answers");
                    success(request, response, image);
                });
            });
    };
}

}  // namespace

void setImageWithURLRequest(UIImageView& view, const Ref<NSURLRequest>& request, const Ref<UIImage>& placeholder,
                            AFImageDownloader::Success success, AFImageDownloader::Failure failure) {
    if (placeholder) view.setImage(placeholder);
    view.setImageTask(request);
    if (!success) {
        success = [weakView = Weak<UIImageView>(&view)](auto& loaded, auto&, auto& image) {
            showIfStillWanted(weakView, loaded, image);
        };
    }
    AFImageDownloader::defaultInstance().downloadImageForURLRequest(
        request, pixelSideOf(view), preparedFor(view, std::move(success)), std::move(failure));
}

}  // namespace flarebox
