#pragma once

#include <AVFoundation/VideoPipeline.h>
#include <Foundation/NSError.h>

typedef struct _GstMessage GstMessage;

namespace flarebox {

/// Whether the library says that it could go on with one more plug-in.
bool isMissingPlugin(GstMessage& message);
/// Whether that would read sound or moving pictures; whatever else was sent is no video.
bool isAboutMedia(GstMessage& missingPlugin);

/// Whether an error is that of the machine's sound, a device that was pulled out for example.
bool isAboutSoundOutput(GstMessage& error);

/// What an error message of the library means to people.
VideoFailure failureOfMessage(GstMessage& message, bool lacksDecoder);

inline VideoFailure notAVideo() {
    return {NSURLErrorCannotDecodeContentData, "This video is damaged or of an unknown kind."};
}

}  // namespace flarebox
