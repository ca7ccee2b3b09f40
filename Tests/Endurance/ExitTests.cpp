// Processes that end at random moments, with everything under way.

#include <AVFoundation/AVPlayer.h>
#include <SceneKit/SCNView.h>
#include <Tests/Endurance/Parts.h>
#include <Tests/Endurance/Seams.h>
#include <Tests/Endurance/Stage.h>
#include <Tests/Endurance/Usage.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace flarebox::endurance {
namespace {

using RealClock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

/// In seconds, on a machine that has nothing else to do.
constexpr double longestEnd = 0.2;
/// What sanitizers do at the end is not the kit's time.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double sanitizerShare = 25;
#else
constexpr double sanitizerShare = 1;
#endif

constexpr std::array activities = {"nothing", "loading", "looking", "models", "videos", "first video"};
constexpr std::array endings = {"everything alive", "only a tab", "taken down", "from a callback"};

const testing::TemporaryDirectory registry;
// As hosts hold them: for the whole of the process.
std::unique_ptr<Stage> stage;
Ref<FlareboxView> lastTab;

void runUntil(RealClock::time_point moment) {
    while (RealClock::now() < moment) {
        stage->host->update();
        stage->host->drawFrame();
        std::this_thread::sleep_for(Milliseconds(2));
    }
}

void begin(const std::string& activity) {
    stage->tab->showAtWindow();
    if (activity == "nothing" || activity == "loading") return;
    stage->settle([] { return stage->tab->superview() && stage->tab->currentAsset(); });
    // Attaching closes it once more.
    stage->frames(2);
    stage->tab->toggleFlarebox(true, false);
    stage->selectAsset(activity == "first video" ? 0 : stage->below(6));
    if (activity == "models") stage->tab->changeAssetMode(AssetMode3D);
    if (activity != "videos" && activity != "first video") return;
    stage->tab->changeAssetMode(AssetModeVideo);
    if (stage->tab->videoView()->avPlayer()) stage->tab->videoView()->avPlayer()->play();
}

/// Once on this machine all that libraries keep between processes is made: not what is measured here.
void warmUp(const std::string& activity) {
    stage->selectAsset(1);
    const auto& video = stage->tab->videoView()->avPlayer();
    if (activity == "videos" && video) {
        stage->tab->changeAssetMode(AssetModeVideo);
        video->play();
        stage->settle([&] { return video->isReady() || video->error(); });
    }
    if (activity == "models") {
        stage->settle([] {
            stage->host->drawFrame();
            return stage->tab->scnContent()->scnView().pictureCount() > 0;
        });
    }
}

/// The time that a process has to end, in seconds. A machine that has several things to do for each of its processors
/// needs that much longer, and more for threads that let others go first.
double limit() {
    const auto slack = static_cast<double>(setting("FLAREBOX_SLACK", 5));
    double load = 0;
    if (slack > 1) getloadavg(&load, 1);
    return longestEnd * sanitizerShare * std::max(slack, 4 * load / std::thread::hardware_concurrency());
}

Arguments partOf(std::size_t number) {
    std::mt19937 random(static_cast<std::uint32_t>(number));
    return {"leave",
            sharedService().baseURL(),
            std::to_string(number),
            activities[number % activities.size()],
            endings[(number + number / activities.size()) % endings.size()],
            std::to_string(random() % 300)};
}

}  // namespace

int leaveInTheMiddle(const Arguments& arguments) {
    const std::string &activity = arguments[2], &ending = arguments[3];
    stage =
        std::make_unique<Stage>(static_cast<std::uint32_t>(std::stoul(arguments[1])), Stage::Time::Real, arguments[0]);
    // As on a machine on which no video has been played yet.
    if (activity == "first video") setenv("GST_REGISTRY", registry.path("registry").c_str(), 1);
    begin(activity);
    if (ending == "warm up") {
        warmUp(activity);
    } else {
        runUntil(RealClock::now() + Milliseconds(std::stoi(arguments[4])));
    }
    if (ending == "only a tab") {
        lastTab = stage->tab;
        sayThatItEnds();
        stage.reset();
        return 0;
    }
    if (ending == "from a callback") {
        dispatch_async_main([] {
            sayThatItEnds();
            std::exit(0);
        });
        stage->host->update();
    }
    sayThatItEnds();
    if (ending == "taken down") {
        stage->tab->removeFromSuperview();
        stage.reset();
    }
    return 0;
}

TEST(ExitTest, AProcessEndsAtOnceWhateverIsUnderWay) {
    for (const char* activity : {"models", "videos"})
        playPart({"leave", sharedService().baseURL(), "1", activity, "warm up", "0"});
    const std::size_t count = setting("FLAREBOX_EXITS", Seams::areThere ? 12 : 6), first = setting("FLAREBOX_SEED", 1);
    const bool isTalkative = setting("FLAREBOX_TRACE", 0) > 0;
    std::size_t failures = 0;
    for (std::size_t number = first; number < first + count; ++number) {
        const Arguments part = partOf(number);
        Ending ending;
        // A machine that is busy with something else may take a moment itself.
        constexpr int attempts = 5;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            ending = playPart(part);
            if (ending.status != 0 || ending.seconds <= limit()) break;
        }
        const std::string what = part[3] + ", " + part[4] + " after " + part[5] + " ms, seed " + part[2];
        EXPECT_EQ(ending.status, 0) << what << "\n" << ending.output;
        EXPECT_LE(ending.seconds, limit()) << what << "\n" << ending.output;
        failures += ending.status != 0 || ending.seconds > limit();
        if (isTalkative) std::printf("%5.0f ms  %s\n", ending.seconds * 1000, what.c_str());
    }
    report("exits of processes", count, count - failures, failures);
}

}  // namespace flarebox::endurance
