#pragma once

#include <AVFoundation/VideoPipeline.h>
#include <Foundation/NSError.h>

typedef struct _GstMessage GstMessage;

namespace flarebox {

/// What an error message of the library means to people.
VideoFailure failureOfMessage(GstMessage& message);

inline VideoFailure notAVideo() {
    return {NSURLErrorCannotDecodeContentData, "This video is damaged or of an unknown kind."};
}

}  // namespace flarebox
