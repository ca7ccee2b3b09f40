#include <Networking/UIImageView+AFNetworking.h>

#include <utility>

namespace flarebox {

namespace {

void showIfStillWanted(const Weak<UIImageView>& weakView, const Ref<NSURLRequest>& request, const Ref<UIImage>& image) {
    auto view = weakView.lock();
    if (!view || view->imageTask() != Ref<NSObject>(request)) return;
    view->setImageTask(nullptr);
    view->setImage(image);
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
    AFImageDownloader::defaultInstance().downloadImageForURLRequest(request, std::move(success), std::move(failure));
}

}  // namespace flarebox
