#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>

namespace flarebox {

class AVPlayer;

/// Posted about a player's item when it has been played to its end.
inline constexpr const char* AVPlayerItemDidPlayToEndTimeNotification = "AVPlayerItemDidPlayToEndTimeNotification";

/// What a player plays. Does nothing any more once its player is gone. Main thread.
class FLAREBOX_EXPORT AVPlayerItem : public NSObject {
    FLAREBOX_CLASS(AVPlayerItem)
public:
    AVPlayerItem(const NSURL& url, AVPlayer& player);

    const NSURL& url() const { return url_; }
    /// Those of the player: 0, 0 and null once it is gone.
    double currentTime() const;
    double duration() const;
    Ref<NSError> error() const;
    /// Has the player go to that moment, in seconds from the beginning.
    void seekToTime(double seconds);

private:
    NSURL url_;
    Weak<AVPlayer> player_;
};

}  // namespace flarebox
