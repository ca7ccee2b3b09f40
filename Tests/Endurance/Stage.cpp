#include <Tests/Endurance/Stage.h>

#include <AVFoundation/AVPlayer.h>
#include <Flarebox/Core/FlareboxBundle.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSTimer.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/Shutdown.h>
#include <Networking/AFNetworkReachabilityManager.h>
#include <Tests/Endurance/Usage.h>
#include <Tests/Support/Pump.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIWindow.h>

#include <array>
#include <chrono>
#include <thread>
#include <utility>

namespace flarebox::endurance {
namespace {

using Milliseconds = std::chrono::milliseconds;
constexpr double frame = 1.0 / 60;

Ref<FXUserSession> player() {
    const Ref<FXUserSession> user = FXUserSession::init();
    user->setDeviceId("6F9619FF-8B86-D011-B42D-00C04FC964FF");
    return user;
}

}  // namespace

examples::Service& sharedService() {
    static examples::Service service;
    static const bool isStarted = service.start();
    static_cast<void>(isStarted);
    return service;
}

Stage::Stage(std::uint32_t seed, Time time, const std::string& serviceURL)
    : time_(time), random_(seed), network_(make<ManualNetworkMonitor>(AFNetworkReachabilityStatusReachableViaWiFi)) {
    flareboxBundle().setInfoDictionaryValue("API_URL", serviceURL.empty() ? sharedService().baseURL() : serviceURL);
    NSFileManager::defaultManager().setDocumentsDirectory(documents_.path());
    NSUserDefaults& settings = NSUserDefaults::standardUserDefaults();
    settings.setFile(settings_.path("settings"));
    // In seconds: a service that hangs is given up soon.
    settings.setObject(1, "timeoutInterval");
    if (time == Time::Virtual) Clock::setCurrent(&clock);
    AVPlayerSettings silent;
    silent.hasSound = false;
    AVPlayer::setSettings(silent);
    host = std::make_unique<HeadlessHost>(CGSize{480, 270}, 1);
    UIApplication::sharedApplication().setUrlOpener(std::make_shared<RecordingUrlOpener>());
    AFNetworkReachabilityManager::sharedManager().setMonitor(network_);
    FlareboxConfig& config = FlareboxConfig::defaultConfig();
    config.configFlareboxWithUserSession(player(), "game-1", "1.0", config.enableLogging(), config.logLevel());
    config.setTimeRefresh(0);
    FlareboxManager::sharedInstance().setSessionInfo(nullptr);
    FlareboxManager::sharedInstance().setGameAssets(nullptr);
    tab = FlareboxView::init();
    tabs_.emplace_back(tab.get());
}

Stage::~Stage() {
    tab = nullptr;
    host = nullptr;
    if (time_ == Time::Virtual) Clock::setCurrent(nullptr);
}

void Stage::frames(int count) {
    for (int each = 0; each < count; ++each) {
        if (time_ == Time::Virtual) clock.advance(frame);
        host->update();
    }
}

bool Stage::settle(const std::function<bool()>& condition, double seconds) {
    return testing::pumpUntil(
        [&] {
            host->update();
            return condition();
        },
        seconds);
}

bool Stage::settleIdle(double seconds) {
    return settle([] { return MainQueue::shared().isIdle(); }, seconds);
}

bool Stage::showLoadedTab() {
    tab->showAtWindow();
    frames(12);
    return settle([&] { return tab->superview() && tab->currentAsset(); }) && settleIdle();
}

void Stage::showInAllModes(std::size_t asset, int frameCount) {
    selectAsset(asset);
    for (const AssetMode mode : {AssetMode3D, AssetMode2D, AssetModeVideo}) {
        tab->changeAssetMode(mode);
        for (int frame = 0; frame < frameCount; ++frame) {
            host->drawFrame();
            settleIdle(0.03);
            frames(2);
        }
    }
}

void Stage::selectAsset(std::size_t index) {
    if (tab->assestsList() && index < tab->assestsList()->size()) tab->selectAsset((*tab->assestsList())[index]);
}

void Stage::act() {
    switch (below(12)) {
        case 0:
        case 1:
        case 2:
            return callTab();
        case 3:
        case 4:
            return look();
        case 5:
        case 6:
            return touch();
        case 7:
            return play();
        case 8:
            return ask();
        case 9:
            // Answers come meanwhile.
            std::this_thread::sleep_for(Milliseconds(below(4)));
            return frames(2);
        case 10:
            settleIdle(0.03);
            return;
        default:
            host->drawFrame();
            return frames(static_cast<int>(below(20)));
    }
}

void Stage::callTab() {
    switch (below(10)) {
        case 0:
        case 1:
            return tab->showAtWindow();
        case 2:
        case 3:
            return tab->open();
        case 4:
            return tab->toggleFlarebox();
        case 5:
            return tab->updateWithNewGameUDID();
        case 6:
            return tab->removeFromSuperview();
        case 7:
            return tab->loadData();
        case 8:
            return tab->changeRefreshDataTime(static_cast<std::int32_t>(below(3)));
        default:
            if (once(3)) return replaceTab();
            tab->removeFromSuperview();
            return tab->showAtView(*UIApplication::sharedApplication().delegate()->window());
    }
}

void Stage::look() {
    if (tab->assestsList()) selectAsset(below(tab->assestsList()->size()));
    const auto mode = static_cast<AssetMode>(below(3));
    if (mode != AssetMode3D || has3D) tab->changeAssetMode(mode);
    host->drawFrame();
    frames(1);
}

void Stage::touch() {
    static constexpr std::array names = {"btnOpen",        "btnClose", "btn2d",        "btnVideo",
                                         "btnBuy",         "btnNext",  "btnPrevious",  "btnCoupon",
                                         "collectionView", "btn3d",    "scnContainer", "videoContainer"};
    const std::string_view name = names[below(has3D ? names.size() : 9)];
    const auto* view = field(name);
    if (!view) return;
    const CGRect rect = view->presentationRectInRoot();
    host->pointerDown(0, {rect.midX(), rect.midY()});
    if (once(3)) host->pointerMoved(0, {rect.midX() - 40, rect.midY()});
    host->pointerUp(0, {rect.midX(), rect.midY()});
    frames(1);
}

void Stage::play() {
    if (!tab->videoView()) return;
    if (once(4)) host->keyDown("escape");
    if (once(3)) tab->videoView()->pressPlayButton();
    const Ref<AVPlayer> video = tab->videoView()->avPlayer();
    if (!video || !once(3)) return;
    video->play();
    if (once(2)) video->seekToTime(static_cast<double>(below(5)));
    if (once(4)) video->pause();
    settle([&] { return video->isReady(); }, 0.002 * static_cast<double>(below(40)));
}

void Stage::replaceTab() {
    tab = nullptr;
    tab = FlareboxView::init();
    std::erase_if(tabs_, [](const Weak<FlareboxView>& each) { return !each; });
    tabs_.emplace_back(tab.get());
    tab->showAtWindow();
}

std::function<void()> Stage::counted() {
    return [calls = calls_] { calls->late += calls->isOver; };
}

/// What a host itself may have under way with the kit.
void Stage::ask() {
    FlareboxManager& manager = FlareboxManager::sharedInstance();
    switch (below(4)) {
        case 0:
            return manager.createSesstion([done = counted()](const auto&, const auto&) { done(); });
        case 1:
            return manager.loadGameCommonAssets([done = counted()](const auto&, const auto&) { done(); });
        case 2:
            return dispatch_after_main(0.1 * static_cast<double>(below(5)), counted());
        default:
            return UIView::animateWithDuration(
                0.2, [&] { tab->setFlareboxButtonAlpha(0.1 * static_cast<double>(below(11))); },
                [done = counted()](bool) { done(); });
    }
}

void Stage::disturb() {
    using Behaviour = examples::Behaviour;
    static constexpr std::array paths = {"/sessions/", "/game/common-assets/", "/kafka/engagement/", "/coupons/"};
    const char* path = paths[below(paths.size())];
    switch (below(8)) {
        case 0:
            return network_->setStatus(AFNetworkReachabilityStatusNotReachable);
        case 1:
            return network_->setStatus(AFNetworkReachabilityStatusReachableViaWWAN);
        case 2:
            return sharedService().behave(path, {.status = 500, .times = 2});
        case 3:
            return sharedService().behave(path, {.ending = Behaviour::Ending::Cut, .times = 1});
        case 4:
            return sharedService().behave(path, {.ending = Behaviour::Ending::Hang, .times = 1});
        case 5:
            return sharedService().behave(path, {.delay = Milliseconds(below(30)), .times = 3});
        case 6:
            return sharedService().behave("/game/common-assets/", {.body = once(2) ? "[]" : "[{}]", .times = 2});
        default:
            return heal();
    }
}

void Stage::heal() {
    sharedService().behaveNormally();
    network_->setStatus(AFNetworkReachabilityStatusReachableViaWiFi);
}

void Stage::takeDown() {
    switch (below(4)) {
        case 0:
            tab = nullptr;
            host = nullptr;
            return;
        case 1:
            tab->removeFromSuperview();
            tab = nullptr;
            frames(static_cast<int>(below(3)));
            host = nullptr;
            return;
        case 2:
            host = nullptr;
            tab = nullptr;
            return;
        default:
            // Nothing that a host without its adapter may ask of its tab does any harm.
            host = nullptr;
            tab->close();
            tab->open();
            tab->removeFromSuperview();
            tab = nullptr;
            return Shutdown::run();
    }
}

std::string Stage::end() {
    takeDown();
    calls_->isOver = true;
    std::string wrong;
    for (const auto& each : tabs_) {
        if (each.lock()) wrong += "a tab is left; ";
    }
    MainQueue& queue = MainQueue::shared();
    if (!queue.isIdle() || queue.run()) wrong += "work is left; ";
    std::this_thread::sleep_for(Milliseconds(below(3)));
    if (!queue.isIdle() || queue.run()) wrong += "work has come afterwards; ";
    for (const std::string& name : threadNames()) {
        // That one opens a library once for the process, and nobody waits for it.
        if (name.starts_with("flarebox-") && name != "flarebox-video+") wrong += name + " still runs; ";
    }
    if (calls_->late > 0) wrong += "a completion was called after the end; ";
    return wrong;
}

}  // namespace flarebox::endurance
