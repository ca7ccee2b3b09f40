// For builds without a library that plays videos.
#ifndef FLAREBOX_VIDEO

#include <AVFoundation/VideoPipeline.h>

namespace flarebox {

bool VideoPipeline::isSupported() {
    return false;
}

std::unique_ptr<VideoPipeline> VideoPipeline::open(const std::string&, const VideoOptions&, std::function<void()>) {
    return nullptr;
}

}  // namespace flarebox

#endif
