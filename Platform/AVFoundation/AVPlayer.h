#pragma once

#include <AVFoundation/AVPlayerItem.h>
#include <AVFoundation/VideoPipeline.h>
#include <Foundation/Export.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSError.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace flarebox {

class AVPlayer;

/// What a player does at its end. It has one item, so that all of them come to the same: it stops on the last frame.
enum class AVPlayerActionAtItemEnd : std::uint8_t { Advance, Pause, None };

enum class AVPlayerTimeControlStatus : std::uint8_t {
    Paused,
    WaitingToPlay,  ///< asked to play, and loading, seeking or short of data
    Playing
};

/// For every player made after they were set.
struct AVPlayerSettings {
    /// False: no player opens the machine's sound output.
    bool hasSound = true;
    /// Seconds in which nothing arrives from the server after which a player that needs data fails.
    double stallTimeout = 15;
    /// A file of certificates (PEM) to trust instead of the system's.
    std::string certificateAuthorityFile;
};

/// Is told about a player while it watches it. Main thread.
class FLAREBOX_EXPORT AVPlayerObserver {
public:
    /// There is a new frame, or anything else that the player answers has changed.
    virtual void playerChanged(AVPlayer& player) = 0;

protected:
    ~AVPlayerObserver() = default;
};

/// Plays one video from an http or https address, in real time, with the machine's sound. It loads once it is first
/// shown, played or moved to a moment, and costs nothing before. Main thread.
class FLAREBOX_EXPORT AVPlayer : public NSObject {
    FLAREBOX_CLASS(AVPlayer)
public:
    /// Paused at the beginning. An address of another kind leaves a player with an error.
    static Ref<AVPlayer> playerWithURL(const NSURL& url);
    ~AVPlayer() override;

    static const AVPlayerSettings& settings();                  ///< in force
    static void setSettings(const AVPlayerSettings& settings);  ///< players that exist keep theirs
    /// The switch for all sound: while it is set no player is heard, whatever its own `isMuted` says.
    static bool isEverythingMuted();
    static void setEverythingMuted(bool muted);  ///< at once, for players that exist too

    /// At the end nothing plays until it has been moved back; after an error nothing does.
    void play();
    void pause();  ///< stays where it is
    /// 1 from `play` to `pause`, the end or an error, also while it has to wait for data; otherwise 0.
    float rate() const { return rate_; }
    AVPlayerTimeControlStatus timeControlStatus() const;  ///< whether it plays, and if not why
    /// Seconds from the beginning, limited to the video's duration. Plays on from there if it was playing. Where a
    /// further call comes before that has happened, only the last one counts.
    void seekToTime(double seconds);
    /// In seconds; what was last sought even before it is there.
    double currentTime() const;
    /// In seconds; 0 while unknown.
    double duration() const { return state_.duration; }
    /// Null while all is well. It never changes again.
    const Ref<NSError>& error() const { return error_; }
    const Ref<AVPlayerItem>& currentItem() const { return item_; }                          ///< never null
    AVPlayerActionAtItemEnd actionAtItemEnd() const { return actionAtItemEnd_; }            ///< Advance at first
    void setActionAtItemEnd(AVPlayerActionAtItemEnd action) { actionAtItemEnd_ = action; }  ///< changes nothing else
    bool isMuted() const { return isMuted_; }                                               ///< false at first
    void setMuted(bool muted);                                                              ///< this player alone

    /// Starts to load, if it has not yet.
    void load();
    /// The first frame is there.
    bool isReady() const { return state_.isReady; }
    /// Loading, seeking or short of data.
    bool isWaiting() const;
    /// It stands on the last frame, having played to it.
    bool hasEnded() const;
    /// The latest one; null before the first.
    const std::shared_ptr<const VideoFrame>& currentFrame() const { return state_.frame; }

    /// Borrowed until it is removed.
    void addObserver(AVPlayerObserver& observer);
    void removeObserver(AVPlayerObserver& observer);  ///< nothing if it does not watch
    using NSObject::addObserver;
    using NSObject::removeObserver;

private:
    friend Ref<AVPlayer> make<AVPlayer>(const NSURL&);
    explicit AVPlayer(const NSURL& url);
    void pipelineChanged();
    bool isSeeking() const { return state_.lastSeek != lastSeek_; }
    void tellObservers();
    void countActivity();
    void followMuting();

    std::unique_ptr<VideoPipeline> pipeline_;
    VideoState state_;
    Ref<AVPlayerItem> item_;
    Ref<NSError> error_;
    std::vector<AVPlayerObserver*> observers_;
    std::unique_ptr<MainQueue::Activity> activity_;
    std::uint64_t lastSeek_ = 0;
    double soughtTime_ = 0;
    float rate_ = 0;
    AVPlayerActionAtItemEnd actionAtItemEnd_ = AVPlayerActionAtItemEnd::Advance;
    bool isMuted_ = false, endIsKnown_ = false;
};

}  // namespace flarebox
