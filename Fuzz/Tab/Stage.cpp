#include <Fuzz/Tab/Stage.h>

#include <Fuzz/Support/LoopbackServer.h>

#include <Flarebox/Core/FlareboxBundle.h>
#include <Foundation/NSFileManager.h>
#include <Networking/AFNetworkReachabilityManager.h>
#include <Tests/Support/Pump.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIWindow.h>

#include <atomic>

namespace flarebox::fuzz {
namespace {

/// How the service behaves for now; read on the server's thread.
std::atomic<std::size_t> behaviour = 0;

std::string asset(int id, std::string_view more) {
    const std::string picture = "\"http://127.0.0.1:1/" + std::to_string(id) + ".png\"";
    return "{\"id\":" + std::to_string(id) + ",\"uid\":\"asset-" + std::to_string(id) +
           "\",\"title\":\"Asset\",\"file_icon\":" + picture + std::string(more) + "}";
}

std::string answerTo(std::string_view head) {
    static constexpr std::string_view image = ",\"file_image\":\"http://127.0.0.1:1/large.png\"",
                                      video = ",\"video_mobile\":\"http://127.0.0.1:1/film.mp4\"",
                                      shop = ",\"where_to_buy\":\"http://shop.example/\"";
    const std::size_t now = behaviour;
    if (now == 6) return {};
    if (now == 7) return httpAnswer(500, "{}");
    if (head.find("/sessions/") != std::string_view::npos) return httpAnswer(201, R"({"id":7,"uid":"session"})");
    if (head.find("/common-assets/") == std::string_view::npos) return httpAnswer(200, "{}");
    switch (now) {
        case 0:
            return httpAnswer(200, "[" + asset(1, image) + "," + asset(2, video) + "," +
                                       asset(3, std::string(image) + std::string(video) + std::string(shop)) + "]");
        case 1:
            return httpAnswer(200, "[" + asset(1, "") + "]");
        case 2: {
            std::string list = asset(1, image);
            for (int id = 2; id <= 20; ++id) list += "," + asset(id, id % 2 ? image : shop);
            return httpAnswer(200, "[" + list + "]");
        }
        case 3:
            return httpAnswer(200, "[]");
        case 4:
            return httpAnswer(200, R"([{},{"id":3,"title":"no icon"},null])");
        default:
            return httpAnswer(200, R"({"results":17})");
    }
}

}  // namespace

Stage::Stage() : network_(make<ManualNetworkMonitor>(AFNetworkReachabilityStatusReachableViaWiFi)) {
    LoopbackServer& server = LoopbackServer::shared();
    static const bool isAddressed = (flareboxBundle().setInfoDictionaryValue("API_URL", server.url()), true);
    static_cast<void>(isAddressed);
    behaviour = 0;
    server.setAnswer(answerTo);
    NSFileManager::defaultManager().setDocumentsDirectory(documents_.path());
    Clock::setCurrent(&clock);
    host = std::make_unique<HeadlessHost>(screen_, 2);
    UIApplication::sharedApplication().setUrlOpener(std::make_shared<RecordingUrlOpener>());
    AFNetworkReachabilityManager::sharedManager().setMonitor(network_);
    const Ref<FXUserSession> user = FXUserSession::init();
    user->setDeviceId("6F9619FF-8B86-D011-B42D-00C04FC964FF");
    FlareboxConfig::defaultConfig().configFlareboxWithUserSession(user, "game-1", "1.0", false, 0);
    FlareboxConfig::defaultConfig().setTimeRefresh(0);
    FlareboxManager::sharedInstance().setSessionInfo(nullptr);
    FlareboxManager::sharedInstance().setGameAssets(nullptr);
    tab = FlareboxView::init();
}

Stage::~Stage() {
    Clock::setCurrent(nullptr);
}

UIWindow& Stage::window() const {
    return *UIApplication::sharedApplication().delegate()->window();
}

CGPoint Stage::point(ByteSource& source) const {
    const auto x = static_cast<double>(source.byte()) / 240 * screen_.width;
    return {x, static_cast<double>(source.byte()) / 240 * screen_.height};
}

void Stage::tap(ByteSource& source) {
    static constexpr const char* names[] = {
        "btnOpen",     "btnClose",  "btn2d",          "btn3d",          "btnVideo",     "btnBuy",          "btnNext",
        "btnPrevious", "btnCoupon", "collectionView", "videoContainer", "scnContainer", "assetContentView"};
    const auto* view = field(source.pick(names));
    if (!view) return;
    const CGRect rect = view->presentationRectInRoot();
    host->pointerDown(0, {rect.midX(), rect.midY()});
    host->pointerUp(0, {rect.midX(), rect.midY()});
}

void Stage::replaceTab() {
    tab = nullptr;
    tab = FlareboxView::init();
    restartCountdown();
    tab->showAtWindow();
}

void Stage::settle() {
    const bool isQuiet = testing::pumpUntil([&] {
        host->update();
        return MainQueue::shared().isIdle();
    });
    check(isQuiet, "everything that is under way ends");
}

void Stage::changeSurroundings(ByteSource& source) {
    switch (source.below(7)) {
        case 0:
            network_->setStatus(static_cast<AFNetworkReachabilityStatus>(static_cast<int>(source.below(4)) - 1));
            break;
        case 1:
            behaviour = source.below(8);
            break;
        case 2: {
            static constexpr CGSize sizes[] = {{667, 375}, {375, 667}, {1024, 768}, {1, 1}, {20000, 30}, {320, 480}};
            screen_ = source.pick(sizes);
            host->setScreen(screen_, 1 + static_cast<double>(source.below(3)));
            break;
        }
        case 3:
            host->setOrientation(static_cast<UIDeviceOrientation>(source.below(7)));
            break;
        case 4:
            // Larger pictures take long and show nothing new.
            if (screen_.width <= 1024) host->drawFrame();
            break;
        case 5:
            FlareboxManager::sharedInstance().setSessionInfo(nullptr);
            break;
        default:
            FlareboxConfig::defaultConfig().setDeviceUID(source.flag() ? "another" : "");
    }
}

void Stage::end() {
    const Weak<FlareboxView> last(tab.get());
    tab = nullptr;
    host = nullptr;
    check(!last.lock(), "nothing keeps a tab that host and window have let go");
    check(MainQueue::shared().isIdle(), "nothing is left to be done");
}

}  // namespace flarebox::fuzz
