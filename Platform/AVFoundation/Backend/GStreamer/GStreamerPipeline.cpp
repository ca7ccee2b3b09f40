#include <AVFoundation/VideoPipeline.h>

#include <utility>

#include "Playback.h"
#include "PlaybackBoard.h"
#include "VideoThread.h"

namespace flarebox {
namespace {

/// Hands every command on to the video thread.
class GStreamerPipeline : public VideoPipeline {
public:
    GStreamerPipeline(std::shared_ptr<VideoThread> thread, const std::string& url, const VideoOptions& options,
                      std::function<void()> changed)
        : thread_(std::move(thread)),
          board_(std::make_shared<PlaybackBoard>(std::move(changed))),
          playback_(std::make_shared<Playback>(*thread_, board_, url, options)) {
        thread_->async([playback = playback_] { playback->open(); });
    }
    ~GStreamerPipeline() override {
        board_->close();
        thread_->async([&thread = *thread_, playback = playback_] {
            playback->close();
            thread.remove(playback);
        });
    }

    VideoState state() const override { return board_->state(); }
    void setPlaying(bool playing) override {
        thread_->async([playback = playback_, playing] { playback->setPlaying(playing); });
    }
    void seek(std::uint64_t number, double seconds) override {
        thread_->async([playback = playback_, number, seconds] { playback->seek(number, seconds); });
    }
    void setMuted(bool muted) override {
        thread_->async([playback = playback_, muted] { playback->setMuted(muted); });
    }

private:
    std::shared_ptr<VideoThread> thread_;
    std::shared_ptr<PlaybackBoard> board_;
    std::shared_ptr<Playback> playback_;
};

}  // namespace

bool VideoPipeline::isSupported() {
    return true;
}

std::unique_ptr<VideoPipeline> VideoPipeline::open(const std::string& url, const VideoOptions& options,
                                                   std::function<void()> changed) {
    auto thread = VideoThread::shared();
    if (!thread) return nullptr;
    return std::make_unique<GStreamerPipeline>(std::move(thread), url, options, std::move(changed));
}

}  // namespace flarebox
