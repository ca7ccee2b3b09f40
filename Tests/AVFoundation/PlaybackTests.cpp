#include <Foundation/NSNotificationCenter.h>

#include <filesystem>
#include <limits>
#include <string>
#include <system_error>

#include "VideoTesting.h"

namespace flarebox::testing {
namespace {

/// Counts the notifications about ends.
class EndListener : public NSObject {
    FLAREBOX_CLASS(EndListener)
public:
    explicit EndListener(const Ref<AVPlayer>& player) {
        NSNotificationCenter::defaultCenter().addObserver(*this, "ended", AVPlayerItemDidPlayToEndTimeNotification,
                                                          player->currentItem().get());
    }
    void ended() { ++count; }
    int count = 0;
};

const ClassInfo& EndListener::staticClass() {
    static const Action actions[] = {action<&EndListener::ended>("ended")};
    static const ClassInfo info("EndListener", &NSObject::staticClass(), nullptr, {.actions = actions});
    return info;
}

class Playback : public VideoTest {
protected:
    /// Shown, and standing on its first frame.
    Ref<AVPlayer> readyPlayer(const char* file = "colors.mp4") {
        server.emplace(serving(media(file)));
        Ref<AVPlayer> player = playerOf(*server);
        layer = show(player);
        EXPECT_TRUE(until([&] { return player->isReady() && layer->isReadyForDisplay(); }));
        return player;
    }

    std::optional<ScriptedServer> server;
    Ref<AVPlayerLayer> layer;
};

TEST_F(Playback, ShowsTheFirstFrameWhilePaused) {
    for (const char* file : {"colors.mp4", "colors.webm", "colors-table-last.mp4"}) {
        SCOPED_TRACE(file);
        const Ref<AVPlayer> player = readyPlayer(file);
        EXPECT_EQ(player->rate(), 0);
        EXPECT_NEAR(player->currentTime(), 0, 1e-6);
        EXPECT_NEAR(player->duration(), 3, 0.1);
        EXPECT_EQ(player->error(), nullptr);
        EXPECT_EQ(shownColor(), 'r');
        EXPECT_EQ(colorOf(pixelAt({160, 10})), 'k') << "letter-boxed";
        layer->removeFromSuperview();
    }
}

TEST_F(Playback, NothingLoadsBeforeItIsNeeded) {
    server.emplace(serving(media("colors.mp4")));
    const Ref<AVPlayer> player = playerOf(*server);
    layer = AVPlayerLayer::playerLayerWithPlayer(player);
    layer->setFrame(window().bounds());
    layer->setHidden(true);
    window().addSubview(*layer);
    EXPECT_FALSE(until([&] { return server->acceptedConnections() > 0; }, 0.2));
    layer->setHidden(false);
    EXPECT_TRUE(until([&] { return shownColor() == 'r'; }));
}

/// How many descriptors of this process lead to files of the cache folder, and how many of those to one that still has
/// its name.
struct CacheFiles {
    int open = 0, named = 0;
    static CacheFiles now() {
        CacheFiles found;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            const std::string file = std::filesystem::read_symlink(entry.path(), gone).string();
            if (file.find("/.cache/") == file.npos) continue;
            ++found.open;
            found.named += std::filesystem::is_regular_file(file, gone);
        }
        return found;
    }
};

TEST_F(Playback, LeavesNoNamedFileWhateverItLoadsAhead) {
    const int before = CacheFiles::now().named;
    for (const char* file : {"colors.mp4", "colors.webm"}) {
        const Ref<AVPlayer> player = readyPlayer(file);
        player->play();
        EXPECT_TRUE(until([&] { return player->currentTime() > 0.2; }));
        EXPECT_EQ(CacheFiles::now().named, before) << file;
        player->seekToTime(2.5);
        EXPECT_TRUE(until([&] { return player->hasEnded(); })) << "read back from the file";
    }
}

TEST_F(Playback, LeavesNoFileOpenWheneverItIsTakenDown) {
    server.emplace(serving(media("colors.mp4")));
    const int before = CacheFiles::now().open;
    const int rounds = slowness() > 1 ? 40 : 160;
    for (int round = 0; round < rounds; ++round) {
        const Ref<AVPlayer> player = playerOf(*server);
        layer = show(player);
        // From before anything has arrived until everything is under way.
        until([] { return false; }, round % 40 * 0.001);
        layer->removeFromSuperview();
        layer = nullptr;
    }
    EXPECT_TRUE(until([&] { return CacheFiles::now().open == before; }));
}

TEST_F(Playback, ShowsEveryColorInItsTime) {
    for (const char* file : {"colors.mp4", "colors.webm"}) {
        SCOPED_TRACE(file);
        const Ref<AVPlayer> player = readyPlayer(file);
        const EndListener listener(player);
        player->play();
        EXPECT_EQ(player->rate(), 1);
        std::string seen;
        double latest = 0;
        ASSERT_TRUE(until([&] {
            EXPECT_GE(player->currentTime(), latest) << "never goes back";
            latest = player->currentTime();
            if (const char color = shownColor(); seen.empty() || seen.back() != color) seen += color;
            return player->hasEnded();
        }));
        EXPECT_EQ(seen, "rgb");
        EXPECT_EQ(player->rate(), 0);
        EXPECT_EQ(player->currentTime(), player->duration());
        EXPECT_EQ(listener.count, 1);
        EXPECT_EQ(player->currentItem()->currentTime(), player->currentTime());

        player->play();
        EXPECT_FALSE(until([&] { return player->rate() > 0 || shownColor() != 'b'; }, 0.2)) << "the last frame stays";
        EXPECT_EQ(listener.count, 1);
        player->currentItem()->seekToTime(0);
        EXPECT_FALSE(player->hasEnded());
        ASSERT_TRUE(until([&] { return shownColor() == 'r'; }));
        EXPECT_EQ(player->rate(), 0);
        layer->removeFromSuperview();
    }
}

TEST_F(Playback, StandsStillWhilePausedAndCostsNothing) {
    const Ref<AVPlayer> player = readyPlayer();
    player->play();
    ASSERT_TRUE(until([&] { return player->currentTime() > 0.2; }));
    player->pause();
    EXPECT_EQ(player->rate(), 0);
    EXPECT_EQ(player->timeControlStatus(), AVPlayerTimeControlStatus::Paused);
    // What was on its way still arrives.
    until([] { return false; }, 0.2);
    const auto still = player->currentFrame();
    EXPECT_FALSE(until([&] { return host.needsDisplay() || player->currentFrame() != still; }, 0.4));
    EXPECT_TRUE(MainQueue::shared().isIdle());
    player->play();
    ASSERT_TRUE(until([&] { return player->currentTime() > still->time + 0.1; }));
}

TEST_F(Playback, GoesToMoments) {
    struct Case {
        double seconds;
        char color;
    };
    for (const char* file : {"colors.mp4", "colors.webm", "colors-table-last.mp4"}) {
        const Ref<AVPlayer> player = readyPlayer(file);
        for (const Case& c : {Case{1.5, 'g'}, Case{2.5, 'b'}, Case{0.5, 'r'}, Case{1000, 'b'}, Case{-4, 'r'},
                              Case{1.02, 'g'}, Case{std::numeric_limits<double>::quiet_NaN(), 'g'}}) {
            SCOPED_TRACE(std::string(file) + " to " + std::to_string(c.seconds));
            player->seekToTime(c.seconds);
            ASSERT_TRUE(until([&] { return !player->isWaiting() && shownColor() == c.color; }));
            EXPECT_EQ(player->rate(), 0);
            EXPECT_EQ(player->error(), nullptr);
        }
        layer->removeFromSuperview();
    }
}

TEST_F(Playback, ManyJumpsComeToTheLast) {
    const Ref<AVPlayer> player = readyPlayer();
    player->play();
    for (int i = 0; i < 200; ++i) {
        player->seekToTime((i * 37 % 100) / 40.0);
        EXPECT_DOUBLE_EQ(player->currentTime(), (i * 37 % 100) / 40.0);
        if (i % 10 == 0) frame();
    }
    player->seekToTime(1.2);
    ASSERT_TRUE(until([&] { return player->timeControlStatus() == AVPlayerTimeControlStatus::Playing; }));
    EXPECT_NEAR(player->currentTime(), 1.2, 0.3);
    EXPECT_TRUE(until([&] { return shownColor() == 'b'; }));
}

TEST_F(Playback, PlaysOnAfterAJumpFromAnEndThatNobodyHasSeen) {
    const Ref<AVPlayer> player = readyPlayer();
    const EndListener listener(player);
    player->seekToTime(2.8);
    player->play();
    ASSERT_TRUE(until([&] { return player->timeControlStatus() == AVPlayerTimeControlStatus::Playing; }));
    // The end comes meanwhile, and the main queue does not run.
    std::this_thread::sleep_for(std::chrono::seconds(1));
    player->seekToTime(1.2);
    EXPECT_EQ(listener.count, 0);
    ASSERT_TRUE(until([&] { return !player->isWaiting() && player->currentTime() > 1.4; }));
}

TEST_F(Playback, TakesCommandsBeforeItHasLoaded) {
    server.emplace(serving(media("colors.mp4")));
    const Ref<AVPlayer> player = playerOf(*server);
    player->seekToTime(1.5);
    player->play();
    player->setMuted(true);
    layer = show(player);
    EXPECT_EQ(player->rate(), 1);
    EXPECT_EQ(player->timeControlStatus(), AVPlayerTimeControlStatus::WaitingToPlay);
    EXPECT_EQ(player->currentTime(), 1.5);
    std::string seen;
    ASSERT_TRUE(until([&] {
        if (const char color = shownColor(); color != 'k' && !seen.ends_with(color)) seen += color;
        return player->hasEnded();
    }));
    EXPECT_TRUE(seen.ends_with('b') && !seen.ends_with("rb")) << seen;
}

TEST_F(Playback, SeveralLayersShowOnePlayer) {
    const Ref<AVPlayer> player = readyPlayer();
    layer->setFrame(CGRectMake(0, 0, 160, 240));
    const auto second = AVPlayerLayer::playerLayerWithPlayer(player);
    second->setFrame(CGRectMake(160, 0, 160, 240));
    second->setVideoGravity(AVLayerVideoGravity::ResizeAspectFill);
    second->setClipsToBounds(true);
    window().addSubview(*second);
    player->seekToTime(1.5);
    ASSERT_TRUE(until([&] { return colorOf(pixelAt({80, 120})) == 'g'; }));
    EXPECT_EQ(colorOf(pixelAt({80, 20})), 'k');
    EXPECT_EQ(colorOf(pixelAt({240, 20})), 'g') << "fills its area";
    second->setPlayer(nullptr);
    frame();
    EXPECT_EQ(colorOf(pixelAt({240, 120})), 'k');
    EXPECT_EQ(colorOf(pixelAt({80, 120})), 'g');
}

TEST_F(Playback, ReplacedOrGoneInTheMiddle) {
    Ref<AVPlayer> player = readyPlayer();
    const EndListener listener(player);
    const Weak<AVPlayer> weak(player);
    player->play();
    ASSERT_TRUE(until([&] { return player->currentTime() > 0.2; }));
    const Ref<AVPlayer> next = playerOf(*server);
    layer->setPlayer(next);
    next->seekToTime(2.5);
    const Ref<AVPlayerItem> item = player->currentItem();
    player = nullptr;
    EXPECT_FALSE(weak);
    EXPECT_EQ(item->currentTime(), 0);
    item->seekToTime(1);
    ASSERT_TRUE(until([&] { return shownColor() == 'b'; }));
    next->play();
    layer->removeFromSuperview();
    layer = nullptr;
    ASSERT_TRUE(until([&] { return next->hasEnded(); }));
    EXPECT_EQ(listener.count, 0);
}

TEST_F(Playback, GoneInAnObserverOfItsOwn) {
    struct Dropper final : AVPlayerObserver {
        Ref<AVPlayer>* player;
        void playerChanged(AVPlayer& changed) override {
            if (!changed.isReady()) return;
            changed.removeObserver(*this);
            *player = nullptr;
        }
    } dropper;
    Ref<AVPlayer> player = readyPlayer();
    dropper.player = &player;
    player->addObserver(dropper);
    player->play();
    EXPECT_EQ(player, nullptr);
    until([] { return false; }, 0.1);
}

TEST_F(Playback, KeepsTheShapeOfPixelsAndLimitsTheirNumber) {
    struct Case {
        const char* file;
        int width, height;
    };
    // Pixels twice as wide as high; a picture larger than any that is shown.
    for (const Case& c : {Case{"wide-pixels.mp4", 180, 160}, Case{"large.mp4", 1920, 1080}}) {
        const Ref<AVPlayer> player = readyPlayer(c.file);
        ASSERT_NE(player->currentFrame(), nullptr) << c.file;
        const UIView::PixelBuffer& picture = player->currentFrame()->picture;
        EXPECT_NEAR(picture.width * c.height, picture.height * c.width, c.height * 2) << c.file;
        EXPECT_LE(picture.width, 1920);
        EXPECT_LE(picture.height, 1080);
        layer->removeFromSuperview();
    }
}

}  // namespace
}  // namespace flarebox::testing
