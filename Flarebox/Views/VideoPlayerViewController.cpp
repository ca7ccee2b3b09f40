#include <AVFoundation/PlayerView.h>
#include <Flarebox/Core/FlareboxText.h>
#include <Flarebox/Views/Translation.h>
#include <Flarebox/Views/VideoPlayerViewController.h>

namespace flarebox {

const ClassInfo& VideoPlayerViewController::staticClass() {
    static const ClassInfo info("VideoPlayerViewController", &AVPlayerViewController::staticClass(),
                                createObject<VideoPlayerViewController>);
    return info;
}

void VideoPlayerViewController::viewDidLoad() {
    AVPlayerViewController::viewDidLoad();
    translateTexts(view());
    playerView().setErrorText([](const NSError& error) { return flareboxText(error.localizedDescription()); });
}

void VideoPlayerViewController::viewWillAppear(bool animated) {
    AVPlayerViewController::viewWillAppear(animated);
    if (willAppear_) willAppear_();
}

void VideoPlayerViewController::viewWillDisappear(bool animated) {
    AVPlayerViewController::viewWillDisappear(animated);
    if (willDismiss_) willDismiss_();
}

}  // namespace flarebox
