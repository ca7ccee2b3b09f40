#include <Benchmarks/StartUp/MemoryUse.h>
#include <Benchmarks/StartUp/ProductService.h>
#include <Benchmarks/StartUp/StartUp.h>
#include <Benchmarks/Support/ThisProgram.h>
#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Flarebox.h>
#include <Foundation/MainQueue.h>
#include <Host/Headless/CountingCompositor.h>
#include <Networking/AFImageDownloader.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIHost.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UIWindow.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <limits>
#include <thread>

namespace flarebox::benchmarks {

namespace {

constexpr CGSize screen = {1366, 1024};
constexpr CGFloat scale = 2;
constexpr std::chrono::microseconds frameTime(16'667);
constexpr std::chrono::seconds longestWait(60);
constexpr int framesAtRest = 30;
constexpr double scrolledPerFrame = 80;

using Wall = std::chrono::steady_clock;

double milliseconds(Wall::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

/// Milliseconds of a processor that this thread has used.
double processorTime() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

UICollectionView* listIn(UIView& view) {
    if (auto* list = objectCast<UICollectionView>(&view)) return list;
    for (const Ref<UIView>& subview : view.subviews()) {
        if (UICollectionView* list = listIn(*subview)) return list;
    }
    return nullptr;
}

/// The game, its one thread, and how long the kit holds that.
class Game {
public:
    Game(const std::string& baseURL, bool explains) : explains_(explains) {
        flareboxBundle().setInfoDictionaryValue("API_URL", baseURL);
        hold("host", [&] { host_ = std::make_unique<UIHost>(screen, scale); });
        host_->setTurnBudget(std::numeric_limits<double>::infinity());
    }

    void start() {
        hold("configuration", [] {
            FlareboxConfig::defaultConfig().configFlareboxWithUserSession(FXUserSession::init(), "game", "1.0", false,
                                                                          0);
        });
        beginning_ = Wall::now();
        total_ = 0;
        hold("init", [&] { tab_ = FlareboxView::init(); });
        require(bool(tab_), "there is no tab");
        hold("show", [&] { tab_->showAtView(*UIApplication::sharedApplication().delegate()->window()); });
        drawFrame();
        figures_["first_frame_ms"] = milliseconds(Wall::now() - beginning_);
        figures_["first_frame_processor_ms"] = total_;
    }

    /// Until list, picture and models are there and everything has come to rest.
    void open() {
        // A tab that was shown closes itself in a later turn, which a frame without time puts off.
        while (MainQueue::shared().hasDueWork()) drawFrame();
        hold("open", [&] { tab_->open(); });
        playUntil([&] { return hasList() && tab_->assetNodesDict().size() == ProductService::products; }, [] {});
    }

    /// Until the icons of all products have been in sight.
    void scrollThrough() {
        UICollectionView& list = *listIn(*tab_);
        const CGPoint middle = list.convertPointToView({list.bounds().midX(), list.bounds().midY()}, nullptr);
        playUntil([&] { return hasIcons(); }, [&] { host_->scrolled(middle, scrolledPerFrame, 0); });
    }

    Figures figures() {
        figures_["longest_hold_ms"] = longestWall_;
        figures_["longest_hold_processor_ms"] = longest_;
        return figures_;
    }

private:
    template <class Work>
    void hold(const char* name, const Work& work) {
        host_ ? host_->resetLongestTurn() : void();
        const auto start = Wall::now();
        const double startOfWork = processorTime();
        work();
        const double time = processorTime() - startOfWork, wall = milliseconds(Wall::now() - start);
        total_ += time;
        longest_ = std::max(longest_, time);
        longestWall_ = std::max(longestWall_, wall);
        if (explains_ && wall > 1) explain(name, time, wall);
    }

    void explain(const char* name, double time, double wall) const {
        std::fprintf(stderr, "%-14s %6.2f ms, %6.2f ms of the processor:", name, wall, time);
        for (const auto& part : host_->longestTurn().parts())
            std::fprintf(stderr, " %s %.2f", part.name, part.seconds * 1e3);
        std::fprintf(stderr, "\n");
    }

    void drawFrame() {
        hold("update", [&] { host_->update(); });
        hold("draw", [&] { host_->draw(compositor_); });
    }

    template <class Condition, class Input>
    void playUntil(const Condition& isDone, const Input& input) {
        const auto deadline = Wall::now() + longestWait;
        Wall::time_point next = Wall::now();
        for (int rest = framesAtRest; rest > 0;) {
            require(Wall::now() < deadline, "not everything has arrived in time");
            // A frame that came late shifts the others.
            next = std::max(next + frameTime, Wall::now());
            std::this_thread::sleep_until(next);
            hold("input", input);
            drawFrame();
            if (showsList() && figures_.count("list_shown_ms") == 0)
                figures_["list_shown_ms"] = milliseconds(Wall::now() - beginning_);
            rest = isDone() && MainQueue::shared().isIdle() ? rest - 1 : framesAtRest;
        }
    }

    bool hasList() const { return tab_->assestsList() && tab_->assestsList()->size() == ProductService::products; }
    bool showsList() const { return tab_->isOpened() && hasList() && !host_->needsDisplay(); }

    bool hasIcons() const {
        AFAutoPurgingImageCache& pictures = AFImageDownloader::defaultInstance().imageCache();
        return std::ranges::all_of(*tab_->assestsList(), [&](const Ref<FXAssetInfo>& asset) {
            return bool(pictures.imageWithIdentifier(asset->fileIcon().text()));
        });
    }

    bool explains_;
    CountingCompositor compositor_;
    std::unique_ptr<UIHost> host_;
    Ref<FlareboxView> tab_;
    Figures figures_;
    Wall::time_point beginning_;
    double total_ = 0, longest_ = 0, longestWall_ = 0;
};

double mebibytes(std::size_t bytes) {
    return static_cast<double>(bytes) / (1 << 20);
}

}  // namespace

Figures startUp(const std::string& baseURL, bool explains) {
    const MemoryUse before = MemoryUse::now();
    Game game(baseURL, explains);
    game.start();
    game.open();
    const MemoryUse opened = MemoryUse::now();
    game.scrollThrough();
    const MemoryUse scrolled = MemoryUse::now();
    Figures figures = game.figures();
    figures["resident_MiB"] = mebibytes(opened.resident - before.resident);
    figures["written_MiB"] = mebibytes(opened.written - before.written);
    figures["resident_scrolled_MiB"] = mebibytes(scrolled.resident - before.resident);
    figures["written_by_loading_MiB"] = mebibytes(before.written);
    return figures;
}

}  // namespace flarebox::benchmarks
