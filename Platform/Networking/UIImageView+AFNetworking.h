#pragma once

#include <Networking/AFImageDownloader.h>
#include <UIKit/UIImageView.h>

namespace flarebox {

/// Loads a picture for an image view, through AFImageDownloader::defaultInstance(). `placeholder` is shown meanwhile;
/// with null the view keeps what it shows. One of the two callbacks is called, once: at once for a picture from the
/// cache, on the main queue otherwise. `success` decides what to do with the picture; without it the view shows the
/// picture itself, unless another one has been asked for in the meantime. Starting a load cancels no earlier one: its
/// callbacks still come, and know it by their request. The view is not kept alive. A picture
/// that is loaded has no more pixels than the view, by its size at the time, shows of it; where it needs others later,
/// they are made off the main thread. Main thread only.
void setImageWithURLRequest(UIImageView& view, const Ref<NSURLRequest>& request, const Ref<UIImage>& placeholder,
                            AFImageDownloader::Success success, AFImageDownloader::Failure failure);

}  // namespace flarebox
