#pragma once

#include <AVFoundation/VideoPipeline.h>

#include <string>

typedef struct _GstElement GstElement;

namespace flarebox {

class Playback;

/// The library's player for one address, not yet loading. It tells the playback, which has to outlive it, what happens.
/// Null when the library lacks a part. Given back with `destroyPlaybin`.
GstElement* makePlaybin(const std::string& url, const VideoOptions& options, Playback& playback);

void setMuted(GstElement& playbin, bool muted);

/// Ends all that it does; after that it calls back no more.
void destroyPlaybin(GstElement& playbin, Playback& playback);

}  // namespace flarebox
