#include <AVFoundation/AVPlayerViewController.h>
#include <AVFoundation/PlayerView.h>
#include <Foundation/Clock.h>

#include <cmath>
#include <initializer_list>
#include <limits>

#include "VideoTesting.h"

namespace flarebox::testing {
namespace {

/// A player shown over the whole window.
class PlayerControls : public VideoTest {
protected:
    PlayerControls() : VideoTest({375, 667}) {}

    void present(const Ref<AVPlayer>& player) {
        controller = make<AVPlayerViewController>();
        controller->setPlayer(player);
        window().rootViewController()->presentViewController(controller, false, nullptr);
        frame();
    }
    /// A video of three seconds, ready to play.
    Ref<AVPlayer> presentVideo(const char* file = "colors.mp4") {
        server.emplace(serving(media(file)));
        const Ref<AVPlayer> player = playerOf(*server);
        present(player);
        EXPECT_TRUE(until([&] { return player->isReady(); }));
        frame();
        return player;
    }
    PlayerView& view() { return static_cast<PlayerView&>(controller->view()); }
    PlayerControlBar& bar() { return view().bar(); }
    bool isPresented() { return !window().presentedViewControllers().empty(); }

    static CGPoint middleOf(const UIView& control) {
        return control.convertPointToView({control.bounds().midX(), control.bounds().midY()}, nullptr);
    }
    CGPoint knob() { return bar().scrubber().convertPointToView(bar().scrubber().knobCenter(), nullptr); }
    void tap(CGPoint point) {
        host.pointerDown(0, point);
        host.pointerUp(0, point);
        frame();
    }
    void tap(const UIView& control) { tap(middleOf(control)); }

    std::optional<ScriptedServer> server;
    Ref<AVPlayerViewController> controller;
};

TEST(PlaybackTime, IsReadable) {
    struct Case {
        double seconds;
        const char* text;
    };
    for (const Case& c : {Case{0, "0:00"}, Case{-3, "0:00"}, Case{0.9, "0:00"}, Case{1, "0:01"}, Case{61.5, "1:01"},
                          Case{754, "12:34"}, Case{3599.9, "59:59"}, Case{3600, "1:00:00"}, Case{36005, "10:00:05"},
                          Case{std::numeric_limits<double>::infinity(), "99:59:59"},
                          Case{std::numeric_limits<double>::quiet_NaN(), "0:00"}})
        EXPECT_EQ(playbackTimeText(c.seconds), c.text) << c.seconds;
}

#ifndef FLAREBOX_VIDEO
class PlayerControlsWithoutVideo : public PlayerControls {
    void SetUp() override {}
};

TEST_F(PlayerControlsWithoutVideo, SayThatThereIsNone) {
    const Ref<AVPlayer> player = AVPlayer::playerWithURL(NSURL::URLWithString("http://127.0.0.1:1/video.mp4"));
    ASSERT_NE(player->error(), nullptr);
    present(player);
    player->play();
    player->seekToTime(1);
    frame();
    EXPECT_EQ(player->rate(), 0);
    EXPECT_EQ(view().reasonLabel().text(), "This build cannot play videos.");
    EXPECT_TRUE(view().reasonLabel().isVisibleInWindow());
}
#endif

TEST_F(PlayerControls, StandWhereTheyBelong) {
    presentVideo();
    for (const CGSize size : {CGSize{375, 667}, CGSize{1366, 1024}, CGSize{320, 200}}) {
        SCOPED_TRACE(size.width);
        host.setScreen(size, 2);
        frame();
        host.drawFrame();
        EXPECT_EQ(bar().frame(), CGRectMake(0, size.height - 48, size.width, 48));
        EXPECT_LT(middleOf(view().doneButton()).x, size.width / 4);
        EXPECT_LT(middleOf(view().doneButton()).y, size.height / 4);
        EXPECT_GT(bar().scrubber().frame().width(), 80);
        EXPECT_EQ(bar().elapsedLabel().text(), "0:00");
        EXPECT_EQ(bar().remainingLabel().text(), "−0:03");
        for (const UILabel* label : {&bar().elapsedLabel(), &bar().remainingLabel()})
            EXPECT_LE(label->sizeThatFits(1000).width, label->frame().width());
        for (UIControl* control : std::initializer_list<UIControl*>{&view().doneButton(), &bar().playButton(),
                                                                    &bar().muteButton(), &bar().scrubber()}) {
            for (const CGPoint corner : {CGPoint{-15, -15}, CGPoint{15, 15}})
                EXPECT_EQ(window().hitTest(middleOf(*control) + corner), control) << control->accessibilityIdentifier();
        }
        EXPECT_EQ(colorOf(pixelAt({size.width, size.height})), 'r') << "the middle, in pixels";
        EXPECT_EQ(colorOf(pixelAt({size.width, 4})), 'k') << "letter-boxed";
    }
}

TEST_F(PlayerControls, ButtonsDoWhatTheyShow) {
    const Ref<AVPlayer> player = presentVideo();
    tap(bar().playButton());
    EXPECT_EQ(player->rate(), 1);
    EXPECT_TRUE(bar().playButton().isSelected());
    ASSERT_TRUE(until([&] { return player->currentTime() > 0.3; }));
    EXPECT_GT(bar().scrubber().position(), 0.09);
    tap(bar().playButton());
    EXPECT_EQ(player->rate(), 0);
    EXPECT_FALSE(bar().playButton().isSelected());
    tap(bar().muteButton());
    EXPECT_TRUE(player->isMuted());
    EXPECT_TRUE(bar().muteButton().isSelected());
    tap(bar().muteButton());
    EXPECT_FALSE(player->isMuted());

    player->play();
    const CGPoint done = middleOf(view().doneButton());
    tap(done);
    EXPECT_EQ(player->rate(), 0);
    tap(done);
    EXPECT_TRUE(until([&] { return !isPresented(); }));
}

TEST_F(PlayerControls, KeysDoToo) {
    const Ref<AVPlayer> player = presentVideo();
    host.keyDown("space");
    EXPECT_EQ(player->rate(), 1);
    host.keyDown("space");
    EXPECT_EQ(player->rate(), 0);
    host.keyDown("m");
    EXPECT_TRUE(player->isMuted());
    EXPECT_EQ(host.keyDown("q"), InputResult::Consumed) << "not the game's";

    host.keyDown("right");
    EXPECT_NEAR(player->currentTime(), player->duration(), 1e-6);
    ASSERT_TRUE(until([&] { return shownColor() == 'b'; }));
    host.keyDown("left");
    EXPECT_EQ(player->currentTime(), 0);
    ASSERT_TRUE(until([&] { return shownColor() == 'r'; }));
    host.keyDown("escape");
    EXPECT_TRUE(until([&] { return !isPresented(); }));
}

TEST_F(PlayerControls, VideoFollowsTheScrubber) {
    const Ref<AVPlayer> player = presentVideo();
    player->play();
    ASSERT_TRUE(until([&] { return player->timeControlStatus() == AVPlayerTimeControlStatus::Playing; }));
    const CGRect track = bar().scrubber().convertRectToView(bar().scrubber().bounds(), nullptr);

    host.pointerDown(0, knob());
    EXPECT_EQ(player->rate(), 0) << "stands still while it is held";
    const CGPoint blue = {track.minX() + track.width() * 0.85, track.midY()};
    for (const double share : {0.3, 0.6, 1.0}) {
        host.pointerMoved(0, {knob().x + (blue.x - knob().x) * share, blue.y - 30});
        frame();
    }
    EXPECT_NEAR(player->currentTime(), 2.55, 0.2);
    ASSERT_TRUE(until([&] { return shownColor() == 'b'; }));
    host.pointerMoved(0, {track.maxX() + 500, blue.y});
    EXPECT_EQ(bar().scrubber().position(), 1);
    host.pointerMoved(0, {track.minX() + track.width() * 0.5, blue.y});
    host.pointerUp(0, {track.minX() + track.width() * 0.5, blue.y});
    EXPECT_EQ(player->rate(), 1) << "plays on";
    EXPECT_NEAR(player->currentTime(), 1.5, 0.2);
    ASSERT_TRUE(until([&] { return !player->isWaiting(); }));

    player->pause();
    tap({track.minX() + track.width() * 0.1, track.midY()});
    EXPECT_EQ(player->rate(), 0);
    EXPECT_NEAR(player->currentTime(), 0.3, 0.2);
    ASSERT_TRUE(until([&] { return shownColor() == 'r'; }));
}

TEST_F(PlayerControls, PlayBeginsAnewAtTheEnd) {
    const Ref<AVPlayer> player = presentVideo();
    player->seekToTime(2.7);
    player->play();
    ASSERT_TRUE(until([&] { return player->hasEnded(); }));
    frame();
    EXPECT_FALSE(bar().playButton().isSelected());
    EXPECT_EQ(bar().scrubber().position(), 1);
    EXPECT_EQ(bar().remainingLabel().text(), "−0:00");
    host.keyDown("space");
    ASSERT_TRUE(until([&] { return player->currentTime() > 0.1 && player->currentTime() < 2.5; }));
    EXPECT_EQ(player->rate(), 1);
}

TEST_F(PlayerControls, FadeWhileNobodyUsesThem) {
    struct Installer {
        VirtualClock clock;
        Installer() { Clock::setCurrent(&clock); }
        ~Installer() { Clock::setCurrent(nullptr); }
    } time;
    const auto pass = [&](double seconds) {
        MainQueue::advance(time.clock, seconds);
        frame();
    };
    const auto isVisible = [&] { return bar().isVisibleInWindow() && view().doneButton().isVisibleInWindow(); };
    const CGPoint middle = {180, 300};
    // Never ready, so that it goes on for as long as this takes.
    AVPlayerSettings settings = AVPlayer::settings();
    settings.stallTimeout = 600;
    AVPlayer::setSettings(settings);
    server.emplace([](ScriptedServer::Connection& connection) { connection.hang(); });
    const Ref<AVPlayer> player = playerOf(*server);
    present(player);
    pass(10);
    EXPECT_TRUE(isVisible()) << "paused";
    player->play();
    pass(2.9);
    EXPECT_TRUE(isVisible());
    pass(0.2);
    EXPECT_FALSE(view().showsControls());
    pass(0.2);
    EXPECT_FALSE(isVisible());
    EXPECT_EQ(player->rate(), 1);

    struct Case {
        const char* name;
        std::function<void()> use;
    };
    for (const Case& c : {Case{"movement",
                               [&] {
                                   host.pointerHovered(middle + CGPoint{1, 1});
                               }},
                          Case{"tap", [&] { tap(middle); }}, Case{"key", [&] { host.keyDown("up"); }},
                          Case{"pause", [&] { player->pause(); }}}) {
        SCOPED_TRACE(c.name);
        player->play();
        view().hideControls();
        host.pointerHovered(middle);
        view().hideControls();
        pass(1);
        EXPECT_FALSE(isVisible()) << "a pointer that rests changes nothing";
        c.use();
        pass(2.9);
        EXPECT_TRUE(isVisible());
    }
    player->play();
    pass(2);
    tap(bar().muteButton());
    pass(2);
    EXPECT_TRUE(isVisible()) << "a button was used";
    pass(1.5);
    EXPECT_FALSE(isVisible());
    tap(bar().muteButton());
    EXPECT_TRUE(player->isMuted()) << "a control that cannot be seen cannot be pressed";
    pass(0.2);
    EXPECT_TRUE(isVisible());
    tap(middle);
    EXPECT_FALSE(view().showsControls()) << "a tap on the video";
}

TEST_F(PlayerControls, SayWhatIsWrong) {
    server.emplace(answering([](ScriptedServer::Connection& connection, const std::string&) {
        connection.answer("404 Not Found", "", "nothing here");
    }));
    present(playerOf(*server));
    controller->player()->play();
    ASSERT_TRUE(until([&] { return controller->player()->error() != nullptr; }));
    frame();
    EXPECT_TRUE(view().reasonLabel().isVisibleInWindow());
    EXPECT_EQ(view().reasonLabel().text(), "The video does not exist any more.");
    EXPECT_LT(std::abs(middleOf(view().reasonLabel()).y - 333), 30);
    EXPECT_TRUE(view().spinner().isHidden());
    for (const UIControl* control :
         std::initializer_list<const UIControl*>{&bar().playButton(), &bar().muteButton(), &bar().scrubber()})
        EXPECT_FALSE(control->isEnabled()) << control->accessibilityIdentifier();
    tap(knob());
    host.keyDown("space");
    host.keyDown("right");
    EXPECT_EQ(controller->player()->rate(), 0);
    tap(view().doneButton());
    EXPECT_TRUE(until([&] { return !isPresented(); }));
}

TEST_F(PlayerControls, AWheelTurnsWhileThereIsNothingToShow) {
    server.emplace(answering([](ScriptedServer::Connection& connection, const std::string& request) {
        connection.pause(0.7);
        answerFile(connection, request, media("colors.webm"));
    }));
    present(playerOf(*server));
    ASSERT_TRUE(until([&] { return view().spinner().isAnimating() && view().spinner().isVisibleInWindow(); }));
    ASSERT_TRUE(until([&] { return controller->player()->isReady(); }));
    EXPECT_TRUE(view().spinner().isHidden());
    EXPECT_TRUE(until([&] { return shownColor() == 'r'; }));
}

TEST_F(PlayerControls, FollowAnotherPlayer) {
    const Ref<AVPlayer> first = presentVideo();
    first->play();
    controller->setPlayer(playerOf(*server));
    EXPECT_FALSE(bar().playButton().isSelected());
    ASSERT_TRUE(until([&] { return controller->player()->isReady(); }));
    controller->setPlayer(nullptr);
    frame();
    EXPECT_EQ(shownColor(), 'k');
    for (const char* key : {"space", "left", "m"}) host.keyDown(key);
    tap(bar().playButton());
    host.keyDown("escape");
    EXPECT_TRUE(until([&] { return !isPresented(); }));
    controller = nullptr;
    EXPECT_TRUE(first->rate() > 0 || first->hasEnded()) << "left as it is";
}

}  // namespace
}  // namespace flarebox::testing
