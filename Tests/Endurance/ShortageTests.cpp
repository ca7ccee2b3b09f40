// What the system may run out of, in processes of their own.

#include <AVFoundation/AVPlayer.h>
#include <SceneKit/SCNView.h>
#include <Tests/Endurance/Parts.h>
#include <Tests/Endurance/Seams.h>
#include <Tests/Endurance/Stage.h>
#include <Tests/Endurance/Usage.h>
#include <UIKit/UIImageView.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cctype>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <ostream>

namespace flarebox::endurance {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

/// Takes every descriptor that the process may have, until it is told otherwise.
struct Descriptors {
    static void take() {
        rlimit limit{};
        getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = 200;
        setrlimit(RLIMIT_NOFILE, &limit);
        for (int one = dup(STDERR_FILENO); one >= 0; one = dup(STDERR_FILENO)) taken().push_back(one);
    }
    static void giveBack() {
        for (const int one : taken()) close(one);
        taken().clear();
    }
    static std::vector<int>& taken() {
        static std::vector<int> all;
        return all;
    }
};

void limitFiles(rlim_t size) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = size == RLIM_INFINITY ? limit.rlim_max : size;
    setrlimit(RLIMIT_FSIZE, &limit);
}

/// From now on permissions bind this process, whoever it belongs to.
void obeyPermissions() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct none[2] = {};
    syscall(SYS_capset, &header, none);
}

struct Shortage {
    const char* name;
    /// Of what the log says; empty where nothing is lost.
    const char* reason;
    /// `stage` is null before there is a tab.
    void (*begin)(Stage* stage);
    void (*end)(Stage& stage);
    bool isFromTheBeginning = false;
    bool needsSeams = false;
};

/// So that the models are to be loaded anew.
void forgetModels(const Stage& stage) {
    for (const auto& file : fs::directory_iterator(stage.documents())) fs::remove(file);
}

/// False when it does not come.
bool showModel(Stage& stage, std::size_t asset) {
#ifdef FLAREBOX_HAS_3D
    stage.tab->toggleFlarebox(true, false);
    stage.selectAsset(asset);
    stage.tab->changeAssetMode(AssetMode3D);
    const SCNView& scene = stage.tab->scnContent()->scnView();
    const std::size_t before = scene.pictureCount();
    return stage.settle([&] {
        stage.host->drawFrame();
        return scene.pictureCount() > before;
    });
#else
    static_cast<void>(stage), static_cast<void>(asset);
    return true;
#endif
}

void refuseThreads(Stage*) {
    Seams::setThreadsRefused(true);
}
void allowThreads(Stage&) {
    Seams::setThreadsRefused(false);
}
void allowMemory(Stage&) {
    Seams::setMemoryRefused(nullptr, 0);
}

const Shortage shortages[] = {
    {"disk full", "No space left on device",
     [](Stage* stage) {
         forgetModels(*stage);
         Seams::setDiskFull(true);
     },
     [](Stage&) { Seams::setDiskFull(false); }},
    {"files too large", "File too large",
     [](Stage* stage) {
         forgetModels(*stage);
         limitFiles(64 * 1024);
     },
     [](Stage&) { limitFiles(RLIM_INFINITY); }},
    {"folder read-only", "Permission denied",
     [](Stage* stage) {
         obeyPermissions();
         forgetModels(*stage);
         chmod(stage->documents().c_str(), 0500);
     },
     [](Stage& stage) { chmod(stage.documents().c_str(), 0700); }},
    {"folder gone", "", [](Stage* stage) { fs::remove_all(stage->documents()); }, [](Stage&) {}},
    {"folder turned into a file", "has no place on disk",
     [](Stage* stage) {
         fs::remove_all(stage->documents());
         std::ofstream(stage->documents()) << "not a folder";
     },
     [](Stage& stage) { fs::remove(stage.documents()); }},
    // Sanitizers look into memory through descriptors.
    {"no descriptors", "Too many open files", [](Stage*) { Descriptors::take(); },
     [](Stage&) { Descriptors::giveBack(); }, false, true},
    {"no threads", "The system gives no more threads", refuseThreads, allowThreads, false, true},
    {"no threads from the beginning", "The system gives no thread", refuseThreads, allowThreads, true, true},
    {"no memory for answers", "there is not enough memory",
     [](Stage*) { Seams::setMemoryRefused("flarebox-net", 30000); }, allowMemory, true, true},
    {"no memory for decoding", "not enough memory for the answer",
     [](Stage*) { Seams::setMemoryRefused("flarebox-decode", 4000); }, allowMemory, true, true},
    // A model that could not be read is not tried again; the engine itself is there already.
    {"no memory for models", "not enough memory for it",
     [](Stage* stage) {
         showModel(*stage, 5);
         Seams::setMemoryRefused("flarebox-scene", 80000);
     },
     allowMemory, false, true},
};

std::ostream& operator<<(std::ostream& stream, const Shortage& shortage) {
    return stream << shortage.name;
}

bool isWrong = false;

void require(bool condition, const char* what) {
    if (condition) return;
    isWrong = true;
    std::fprintf(stderr, "WRONG: %s\n", what);
}

bool tap(Stage& stage, std::string_view name) {
    const auto* view = stage.field(name);
    if (!view) return false;
    const CGRect rect = view->presentationRectInRoot();
    stage.host->pointerDown(0, {rect.midX(), rect.midY()});
    stage.host->pointerUp(0, {rect.midX(), rect.midY()});
    stage.frames(30);
    return true;
}

/// All that a player may want, whatever comes of it.
void wander(Stage& stage) {
    stage.tab->loadData();
    stage.settleIdle();
    stage.tab->open();
    stage.frames(30);
    for (std::size_t asset = 0; asset < 2; ++asset) {
        stage.showInAllModes(asset, 3);
        stage.tab->videoView()->pressPlayButton();
        stage.frames(30);
        stage.host->keyDown("escape");
        stage.frames(30);
    }
    tap(stage, "btnCoupon");
    stage.settleIdle();
    stage.host->keyDown("escape");
    stage.frames(30);
}

void requireThatItIsUsable(Stage& stage) {
    stage.tab->toggleFlarebox(false, false);
    stage.frames(2);
    require(tap(stage, "btnOpen") && stage.tab->isOpened(), "the button opens the tab");
    require(tap(stage, "btnClose") && !stage.tab->isOpened(), "the button closes the tab");
}

/// Within one refresh everything is as if nothing had been.
void requireThatItIsWhole(Stage& stage) {
    stage.tab->changeRefreshDataTime(1);
    stage.tab->toggleFlarebox(true, false);
    stage.tab->toggleFlarebox(false, false);
    stage.frames(100);
    require(stage.settle([&] { return stage.tab->currentAsset() && MainQueue::shared().isIdle(); }),
            "assets are listed");
    require(stage.field("lbErrorMessage")->isHidden(), "no error is shown");
    require(stage.field("loadingView")->isHidden(), "nothing is being loaded any more");
    stage.tab->toggleFlarebox(true, false);
    stage.selectAsset(1);
    require(stage.settle([&] { return stage.field<UIImageView>("imgAssetContent")->image() != nullptr; }),
            "the picture is shown");
    require(showModel(stage, 4), "the model is shown");
    stage.tab->changeAssetMode(AssetModeVideo);
    const Ref<AVPlayer> video = stage.tab->videoView()->avPlayer();
    if (!video || !VideoPipeline::isSupported()) return;
    video->load();
    require(stage.settle([&] { return video->isReady(); }), "the video is shown");
}

std::string messagesOf(const std::string& output) {
    return output.size() < 6000 ? output : output.substr(0, 3000) + "\n…\n" + output.substr(output.size() - 3000);
}

}  // namespace

int goShort(const Arguments& arguments) {
    const Shortage& shortage = *std::ranges::find(shortages, arguments[1], &Shortage::name);
    FlareboxConfig::defaultConfig().setEnableLogging(true);
    FlareboxConfig::defaultConfig().setLogLevel(LogLevelWarning);
    if (shortage.isFromTheBeginning) shortage.begin(nullptr);
    Stage stage(1, Stage::Time::Virtual, arguments[0]);
    if (shortage.isFromTheBeginning) {
        stage.tab->showAtWindow();
        stage.frames(30);
        stage.settleIdle();
    } else {
        require(stage.showLoadedTab(), "the tab loads");
        shortage.begin(&stage);
    }
    wander(stage);
    requireThatItIsUsable(stage);
    shortage.end(stage);
    std::fprintf(stderr, "Over, after %d refusals.\n", Seams::refusals());
    requireThatItIsWhole(stage);
    const std::string left = stage.end();
    require(left.empty(), left.c_str());
    return isWrong ? 1 : 0;
}

class ShortageTest : public ::testing::TestWithParam<Shortage> {};

TEST_P(ShortageTest, TheTabStaysUsableAndTheLogSaysWhy) {
    const Shortage& shortage = GetParam();
    if (shortage.needsSeams && !Seams::areThere) GTEST_SKIP() << "a sanitizer has its own of these operations";
    const Ending ending = playPart({"short", sharedService().baseURL(), shortage.name});
    const std::string during = ending.output.substr(0, ending.output.find("Over, after"));
    EXPECT_EQ(ending.status, 0) << messagesOf(ending.output);
    EXPECT_THAT(during, HasSubstr(shortage.reason)) << messagesOf(ending.output);
    report(std::string("shortage: ") + shortage.name, 1, !HasFailure(), HasFailure());
}

std::string nameOf(const ::testing::TestParamInfo<Shortage>& info) {
    std::string name;
    for (const char each : std::string_view(info.param.name)) {
        if (std::isalpha(static_cast<unsigned char>(each))) name += each;
    }
    return name;
}
INSTANTIATE_TEST_SUITE_P(Of, ShortageTest, ::testing::ValuesIn(shortages), nameOf);

}  // namespace flarebox::endurance
