#include <AVFoundation/AVPlayerViewController.h>
#include <Flarebox/Views/VideoView.h>
#include <Foundation/NSNotificationCenter.h>
#include <Tests/Views/TabTesting.h>
#include <UIKit/UIButton.h>
#include <UIKit/UILabel.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace flarebox::testing {
namespace {

std::string mediaFile(const std::string& name) {
    std::ifstream file(std::string(MEDIA_FOLDER) + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class VideoTest : public TabTest {
protected:
    enum Kind : std::size_t { First, Second, None, Broken };

    void SetUp() override {
        TabTest::SetUp();
        AVPlayerSettings silent;
        silent.hasSound = false;
        AVPlayer::setSettings(silent);
        for (const char* path : {"/videos/one", "/videos/two"})
            sharedService().behave(path, {.status = 200, .body = mediaFile("colors.mp4"), .contentType = "video/mp4"});
        sharedService().behave("/videos/broken", {.status = 404});
        sharedService().behave("/game/common-assets/",
                               {.body = "[" + assetJSON(1, "one") + "," + assetJSON(2, "two") + "," + assetJSON(3, "") +
                                        "," + assetJSON(4, "broken") + "]"});
        showLoadedTab();
        tab_->open();
        pass(0.5);
        tab_->changeAssetMode(AssetModeVideo);
    }
    void TearDown() override {
        TabTest::TearDown();
        AVPlayer::setSettings({});
    }
    static std::string assetJSON(int number, const std::string& video) {
        const std::string link = video.empty() ? "" : sharedService().baseURL() + "/videos/" + video;
        return R"({"id":)" + std::to_string(number) + R"(,"uid":"u)" + std::to_string(number) +
               R"(","advertiser_uid":"v","campaign_uid":"c","file_icon":"/i","title":"T","where_to_buy":"https://shop.example","video_mobile":")" +
               link + R"("})";
    }
    void select(Kind kind) { tab_->selectAsset((*tab_->assestsList())[kind]); }
    VideoView& view() { return *tab_->videoView(); }
    AVPlayer& player() { return *view().avPlayer(); }
    UIView& part(std::string_view name) {
        return *objectCast<UIView>(VideoView::staticClass().outlet(name)->get(view()));
    }
    /// What the view shows of its parts.
    std::string parts() {
        std::string text;
        for (const char* name : {"lbMessage", "btnPlay", "videoPreventView"})
            if (!part(name).isHidden()) text += std::string(name) + " ";
        return text;
    }
    AVPlayerViewController* presented() {
        const auto& root = UIApplication::sharedApplication().keyWindow()->rootViewController();
        return root ? objectCast<AVPlayerViewController>(root->presentedViewController()) : nullptr;
    }
    void pressPlay() {
        host_->update();
        const CGRect rect = part("btnPlay").presentationRectInRoot();
        tap({rect.midX(), rect.midY()});
    }
    bool isBehindTheWindow() { return window().subviews().front().get() == tab_.get(); }
};

TEST_F(VideoTest, EachAssetShowsItsOwnOrSaysThatThereIsNone) {
    EXPECT_EQ(parts(), "btnPlay videoPreventView ");
    EXPECT_EQ(part("videoPreventView").subviews().size(), 1U);
    EXPECT_FALSE(view().isVideoPlaying());
    const Ref<AVPlayer> first(&player());
    first->play();
    EXPECT_TRUE(view().isVideoPlaying());
    select(Second);
    EXPECT_EQ(first->rate(), 0);
    EXPECT_NE(&player(), first.get());
    EXPECT_EQ(part("videoPreventView").subviews().size(), 1U);

    player().play();
    view().loadAssetVideo((*tab_->assestsList())[None]);
    EXPECT_EQ(parts(), "lbMessage ");
    EXPECT_TRUE(part("videoPreventView").subviews().empty());
    EXPECT_FALSE(view().isVideoPlaying());
    view().pressPlayButton();
}

TEST_F(VideoTest, PlaysOverTheWindowWhileTheTabStepsAside) {
    pressPlay();
    ASSERT_TRUE(presented());
    EXPECT_EQ(presented()->player().get(), &player());
    EXPECT_TRUE(view().isVideoPlaying());
    EXPECT_TRUE(field("btnOpen")->isHidden());
    EXPECT_TRUE(isBehindTheWindow());
    ASSERT_TRUE(settle([&] { return player().currentTime() > 0.2; }));
    host_->keyDown("escape");
    pass(0.05);
    EXPECT_EQ(host_->keyDown("space"), InputResult::Consumed) << "while it fades out";
    pass(0.5);
    EXPECT_EQ(player().rate(), 0);
    EXPECT_FALSE(presented());
    EXPECT_FALSE(field("btnOpen")->isHidden());
    EXPECT_FALSE(isBehindTheWindow());
    EXPECT_FALSE(view().isVideoPlaying());

    player().play();
    ASSERT_TRUE(settle([&] { return player().hasEnded(); }));
    EXPECT_EQ(player().rate(), 0);
    EXPECT_TRUE(player().currentFrame()) << "the last frame stays";
    pressPlay();
    ASSERT_TRUE(presented());
    EXPECT_LT(player().currentTime(), 0.2) << "from the beginning each time";
    EXPECT_TRUE(view().isVideoPlaying());
}

TEST_F(VideoTest, StopsForWhateverElseThePlayerDoes) {
    const std::pair<const char*, std::function<void()>> deeds[] = {
        {"buy", [&] { tap("btnBuy"); }},
        {"another mode", [&] { tab_->changeAssetMode(AssetMode3D); }},
        {"another asset", [&] { select(Second); }},
        {"coupon", [&] { tap("btnCoupon"); }},
        {"close", [&] { tab_->close(); }},
        {"remove", [&] { tab_->removeFromSuperview(); }},
    };
    for (const auto& [name, act] : deeds) {
        SCOPED_TRACE(name);
        tab_->changeAssetMode(AssetModeVideo);
        select(First);
        const Ref<AVPlayer> before(&player());
        before->play();
        ASSERT_TRUE(view().isVideoPlaying());
        act();
        EXPECT_EQ(before->rate(), 0);
        EXPECT_FALSE(view().isVideoPlaying());
    }
}

TEST_F(VideoTest, TheFullScreenPlayerGoesWithTheTab) {
    for (const bool isRemoved : {false, true}) {
        pressPlay();
        ASSERT_TRUE(presented());
        if (isRemoved)
            tab_->removeFromSuperview();
        else
            tab_->hideFlareboxButton();
        pass(0.5);
        EXPECT_FALSE(presented());
        EXPECT_EQ(player().rate(), 0);
        if (isRemoved) break;
        EXPECT_FALSE(tab_->isFlareboxButtonVisible());
        tab_->showFlareboxButton();
        tab_->open();
        pass(0.5);
    }
    AFNetworkReachabilityManager::sharedManager().setReachabilityStatusChangeBlock(nullptr);
    const Weak<FlareboxView> watched(tab_.get());
    tab_ = nullptr;
    pass(0.1);
    EXPECT_FALSE(watched.lock()) << "nothing holds a tab that is gone";
}

TEST_F(VideoTest, OneThatCannotBeLoadedIsNotPlaying) {
    select(Broken);
    pressPlay();
    ASSERT_TRUE(settle([&] { return player().error() != nullptr; }));
    EXPECT_FALSE(view().isVideoPlaying());
    ASSERT_TRUE(presented());
    host_->keyDown("escape");
    pass(0.5);
    EXPECT_FALSE(presented());
    select(First);
    EXPECT_FALSE(player().error());
}

/// What the process holds.
struct Holdings {
    std::ptrdiff_t threads = 0, descriptors = 0;
    long kilobytes = 0;
};

Holdings holdings() {
    namespace fs = std::filesystem;
    Holdings now;
    now.threads = std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator());
    now.descriptors = std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == "VmRSS:") status >> now.kilobytes;
    return now;
}

TEST_F(VideoTest, SelectingOverAndOverLeavesNothingBehind) {
    // A sanitizer keeps what was freed for a while.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr long mostGrowth = 512 * 1024;
#else
    // As each thread fills an arena of the allocator.
    constexpr long mostGrowth = 24 * 1024;
#endif
    Holdings early;
    for (int round = 0; round < 200; ++round) {
        select(round % 2 == 0 ? First : Second);
        player().load();
        if (round % 3 == 0) player().play();
        // A tenth of them get as far as a picture, the others are gone in the middle of something.
        if (round % 10 == 0) {
            ASSERT_TRUE(settle([&] { return player().isReady(); }));
        }
        pass(0.02);
        if (round == 49) {
            ASSERT_TRUE(settle([&] { return player().isReady(); }));
            early = holdings();
        }
    }
    ASSERT_TRUE(settle([&] { return player().isReady(); }));
    // Players of earlier rounds end on a thread of their own, and a connection more may wait for further use.
    constexpr int few = 10;
    EXPECT_TRUE(settle([&] { return holdings().threads <= early.threads + few; })) << holdings().threads;
    EXPECT_TRUE(settle([&] { return holdings().descriptors <= early.descriptors + few; })) << holdings().descriptors;
    EXPECT_LT(holdings().kilobytes - early.kilobytes, mostGrowth);
}

TEST_F(VideoTest, TheEndRewindsOnRequest) {
    player().load();
    ASSERT_TRUE(settle([&] { return player().isReady(); }));
    player().seekToTime(0.5);
    player().play();
    NSNotificationCenter::defaultCenter().addObserver(view(), "itemDidFinishPlaying", "TestEnd");
    NSNotificationCenter::defaultCenter().postNotificationName("TestEnd", player().currentItem().get());
    EXPECT_EQ(player().rate(), 0);
    EXPECT_EQ(player().currentTime(), 0);
}

}  // namespace
}  // namespace flarebox::testing
