#include <AVFoundation/AVPlayer.h>
#include <AVFoundation/AVPlayerItem.h>

namespace flarebox {

const ClassInfo& AVPlayerItem::staticClass() {
    static const ClassInfo info("AVPlayerItem", &NSObject::staticClass(), nullptr);
    return info;
}

AVPlayerItem::AVPlayerItem(const NSURL& url, AVPlayer& player) : url_(url), player_(&player) {}

double AVPlayerItem::currentTime() const {
    const Ref<AVPlayer> player = player_.lock();
    return player ? player->currentTime() : 0;
}

double AVPlayerItem::duration() const {
    const Ref<AVPlayer> player = player_.lock();
    return player ? player->duration() : 0;
}

Ref<NSError> AVPlayerItem::error() const {
    const Ref<AVPlayer> player = player_.lock();
    return player ? player->error() : nullptr;
}

void AVPlayerItem::seekToTime(double seconds) {
    if (const Ref<AVPlayer> player = player_.lock()) player->seekToTime(seconds);
}

}  // namespace flarebox
