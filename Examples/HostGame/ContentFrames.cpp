#include "ContentFrames.h"

#include <AVFoundation/AVPlayerLayer.h>
#include <SceneKit/SCNView.h>

#include <algorithm>

namespace flarebox::hostgame {
namespace {

void collect(const UIView& view, ContentFrames& frames) {
    if (const auto* scene = dynamic_cast<const SCNView*>(&view)) frames.scenePictures += scene->pictureCount();
    const auto* layer = dynamic_cast<const AVPlayerLayer*>(&view);
    if (layer && layer->isReadyForDisplay()) frames.videoFrames.push_back(layer->player()->currentFrame());
    for (const Ref<UIView>& child : view.subviews()) collect(*child, frames);
}

}  // namespace

bool ContentFrames::isNewerThan(const ContentFrames& other) const {
    if (scenePictures > other.scenePictures) return true;
    return std::ranges::any_of(videoFrames, [&](const auto& frame) {
        return frame && std::ranges::find(other.videoFrames, frame) == other.videoFrames.end();
    });
}

ContentFrames contentFrames(const UIView& view) {
    ContentFrames frames;
    collect(view, frames);
    return frames;
}

bool showsContent(const UIView& view) {
    if (view.isHidden()) return false;
    return view.showsPixelBuffer() ||
           std::ranges::any_of(view.subviews(), [](const auto& child) { return showsContent(*child); });
}

}  // namespace flarebox::hostgame
