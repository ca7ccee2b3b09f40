#include <Benchmarks/Panel/Panel.h>
#include <Flarebox/Core/FlareboxBundle.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSFileManager.h>
#include <Networking/AFImageDownloader.h>
#include <UIKit/CADisplayLink.h>
#include <UIKit/UICollectionView.h>
#include <UIKit/ViewAnimations.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace flarebox::benchmarks {

namespace {

constexpr std::size_t icons = 20, pictures = 5;
constexpr int iconSide = 512, pictureWidth = 640, pictureHeight = 480;

constexpr const char* titles[] = {"Road running shoe", "Wireless headphones", "Cold brew, 12 cans",
                                  "Desk lamp, warm light", "Canvas day pack"};
constexpr const char* descriptions[] = {
    "A rocker sole that gives back what you put in, under a knit that weighs less than an egg.",
    "Forty hours of quiet. They listen to the room, take the room away and leave you alone with the mix.",
    "Blackcurrant, a little lime and nothing else. Cold from the fridge it tastes like the last level.",
    "Touch the base and evening begins: from daylight to candle, without a flicker, in eleven steps.",
    "Waxed canvas, a roll top and a back panel that breathes. Made for the train to the trail."};

std::string addressOf(const char* kind, std::size_t number) {
    return std::string("http://pictures.example/") + kind + "-" + std::to_string(number) + ".png";
}

/// Each asset has a title and a description of its own, which no list before it had, and one of the pictures at hand.
std::string listOf(std::size_t count) {
    static int edition = 0;
    const std::string ending = ", edition " + std::to_string(++edition);
    std::string json = "[";
    for (std::size_t index = 0; index < count; ++index) {
        const std::string number = std::to_string(index + 1);
        if (index > 0) json += ",\n";
        json += R"({"id": )" + number + R"(, "uid": "asset-)" + number +
                R"(", "advertiser_uid": "a", "campaign_uid": "c", "title": ")" + titles[index % std::size(titles)] +
                (" " + number) + R"(", "description": ")" + descriptions[index % std::size(descriptions)] +
                (" No. " + number + ending) + R"(", "file_icon": ")" + addressOf("icon", index % icons) +
                R"(", "file_image": ")" + addressOf("picture", index % pictures) +
                R"(", "video_mobile": "https://videos.example/)" + number +
                R"(.mp4", "where_to_buy": "https://shop.example/)" + number + R"("})";
    }
    return json + "]";
}

/// Makes the list that the tab shows longer, which a service could not: its answers are bounded.
void lengthenList(FlareboxView& tab, std::size_t count) {
    AssetList& assets = *tab.assestsList();
    for (std::size_t index = assets.size(); index < count; ++index) {
        const std::string number = std::to_string(index + 1);
        assets.push_back(
            FXAssetInfo::initWithDictionary(NSDictionary{{"id", static_cast<std::int64_t>(index + 1)},
                                                         {"uid", "asset-" + number},
                                                         {"title", titles[index % std::size(titles)] + (" " + number)},
                                                         {"file_icon", addressOf("icon", index % icons)},
                                                         {"file_image", addressOf("picture", index % pictures)}}));
    }
    tab.updateFlarebox();
}

Ref<UIImage> paintedImage(int width, int height, std::size_t seed) {
    std::vector<std::uint32_t> pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            pixels.push_back(0xFF000000U | static_cast<std::uint32_t>(x * 255 / width) << 16 |
                             static_cast<std::uint32_t>(y * 255 / height) << 8 |
                             static_cast<std::uint32_t>(seed * 12 & 255));
    return UIImage::imageWithPixels(width, height, std::move(pixels));
}

void putPicturesAtHand() {
    AFAutoPurgingImageCache& cache = AFImageDownloader::defaultInstance().imageCache();
    for (std::size_t index = 0; index < icons; ++index)
        cache.addImage(paintedImage(iconSide, iconSide, index), addressOf("icon", index));
    for (std::size_t index = 0; index < pictures; ++index)
        cache.addImage(paintedImage(pictureWidth, pictureHeight, index), addressOf("picture", index));
}

/// The client reads its address once, so that all panels of the program share one service.
examples::Service& service() {
    static examples::Service instance;
    static const bool isRunning = instance.start();
    if (!isRunning) std::exit((std::fputs("no port for the service\n", stderr), 1));
    flareboxBundle().setInfoDictionaryValue("API_URL", instance.baseURL());
    return instance;
}

std::string emptyFolder() {
    const auto folder = std::filesystem::temp_directory_path() / "flarebox-panel-benchmark";
    std::filesystem::create_directories(folder);
    return folder.string();
}

}  // namespace

Panel::Panel(std::size_t assets) : network_(make<ManualNetworkMonitor>(AFNetworkReachabilityStatusReachableViaWiFi)) {
    service().behave("/game/common-assets/", {.body = listOf(std::min(assets, icons))});
    NSFileManager::defaultManager().setDocumentsDirectory(emptyFolder());
    Clock::setCurrent(&clock_);
    host_ = std::make_unique<UIHost>(landscape, 2);
    host_->setOrientation(UIDeviceOrientation::LandscapeLeft);
    AFNetworkReachabilityManager::sharedManager().setMonitor(network_);
    const Ref<FXUserSession> user = FXUserSession::init();
    user->setDeviceId("6F9619FF-8B86-D011-B42D-00C04FC964FF");
    FlareboxConfig::defaultConfig().configFlareboxWithUserSession(user, "game-1", "1.0", false, 0);
    FlareboxManager::sharedInstance().setSessionInfo(nullptr);
    FlareboxManager::sharedInstance().setGameAssets(nullptr);
    putPicturesAtHand();
    tab_ = FlareboxView::init();
    tab_->showAtWindow();
    for (int frames = 0; frames < 10; ++frames) frame();
    settle([&] { return tab_->currentAsset() != nullptr; });
    if (assets > icons) lengthenList(*tab_, assets);
    rest();
}

Panel::~Panel() {
    host_->releaseTextures(compositor_);
    tab_ = nullptr;
    host_ = nullptr;
    Clock::setCurrent(nullptr);
}

void Panel::update() {
    advanceClock();
    host_->update();
}

void Panel::settle(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            std::exit((std::fputs("the panel shows no list\n", stderr), 1));
        host_->update();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void Panel::rest() {
    settle([] { return MainQueue::shared().isIdle(); });
    do frame();
    while (host_->needsDisplay() || ViewAnimations::isAnimating() || CADisplayLink::isAnyActive() ||
           !MainQueue::shared().isIdle());
}

void Panel::open() {
    tab_->open();
    rest();
}

void Panel::throwList(double pointsPerSecond) {
    constexpr int moves = 4;
    const CGRect list = field<UICollectionView>("collectionView").presentationRectInRoot();
    CGPoint finger = {list.midX(), list.midY()};
    host_->pointerDown(1, finger);
    for (int move = 0; move < moves; ++move) {
        finger.x -= pointsPerSecond * frameTime;
        advanceClock();
        host_->pointerMoved(1, finger);
    }
    host_->pointerUp(1, finger);
}

}  // namespace flarebox::benchmarks
