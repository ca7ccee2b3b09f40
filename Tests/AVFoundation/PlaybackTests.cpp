#include "VideoTesting.h"

namespace flarebox::testing {
namespace {

class Playback : public VideoTest {};

TEST_F(Playback, ShowsTheFirstFrameWhilePaused) {
    for (const char* file : {"colors.mp4", "colors.webm", "colors-table-last.mp4"}) {
        SCOPED_TRACE(file);
        ScriptedServer server(serving(media(file)));
        const Ref<AVPlayer> player = playerOf(server);
        const Ref<AVPlayerLayer> layer = show(player);
        ASSERT_TRUE(until([&] { return layer->isReadyForDisplay(); }));
        ASSERT_TRUE(until([&] { return player->isReady(); }));
        EXPECT_EQ(player->rate(), 0);
        EXPECT_NEAR(player->currentTime(), 0, 1e-6);
        EXPECT_NEAR(player->duration(), 3, 0.1);
        EXPECT_EQ(player->error(), nullptr);
        EXPECT_EQ(shownColor(), 'r');
        EXPECT_EQ(colorOf(pixelAt({160, 10})), 'k') << "letter-boxed";
        layer->removeFromSuperview();
    }
}

}  // namespace
}  // namespace flarebox::testing
