#pragma once

#include <AVFoundation/VideoPipeline.h>

#include <memory>

typedef struct _GstSample GstSample;

namespace flarebox {

/// The picture of a sample of BGRA pixels, without a copy: its buffer lives as long as the frame, the sample itself may
/// be used again. Null when it holds no such picture. Any thread.
std::shared_ptr<const VideoFrame> frameOfSample(GstSample& sample);

}  // namespace flarebox
