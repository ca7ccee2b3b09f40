#include <Networking/UIImageView+AFNetworking.h>

#include <UIKit/UIScreen.h>

#include <algorithm>
#include <cmath>
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
    AFImageDownloader::defaultInstance().downloadImageForURLRequest(request, pixelSideOf(view), std::move(success),
                                                                    std::move(failure));
}

}  // namespace flarebox
