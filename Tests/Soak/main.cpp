// A virtual week of a game with the tab in it: ten thousand refreshes, random use, a network that flaps and a service
// whose content changes. Prints what the process holds as time goes by, and fails when that grows.

#include <Tests/Endurance/Stage.h>
#include <Tests/Endurance/Usage.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace flarebox::endurance {
namespace {

using RealClock = std::chrono::steady_clock;

constexpr std::size_t refreshes = 10000;
constexpr double week = 7 * 24 * 3600.0;
constexpr std::int32_t period = static_cast<std::int32_t>(week / refreshes);
constexpr int lines = 40;

/// The week, as far as it fits into the real time that there is.
class Week {
public:
    explicit Week(double minutes)
        : available_(std::chrono::duration_cast<RealClock::duration>(std::chrono::duration<double>(minutes * 60))),
          deadline_(RealClock::now() + available_) {}

    bool play() {
        std::printf("%8s %10s %10s %8s %12s %8s\n", "day", "refreshes", "heap MiB", "threads", "descriptors", "wrong");
        warmUp();
        for (; done_ < refreshes && RealClock::now() < deadline_; ++done_) {
            refresh();
            usage_.push_back(Usage::now());
            if (RealClock::now() >= nextLine_) print();
        }
        if (usage_.empty()) return false;
        print();
        const std::string left = stage_.end();
        if (!left.empty()) std::printf("wrong at the end: %s\n", left.c_str());
        wrong_ += !left.empty();
        return isFlat();
    }

private:
    /// Whatever libraries and caches keep is there before anything is compared.
    void warmUp() {
        stage_.showLoadedTab();
        stage_.tab->toggleFlarebox(true, false);
        // None where the first list could not be had, which the first refresh finds wrong.
        const std::size_t count = stage_.tab->assestsList() ? stage_.tab->assestsList()->size() : 0;
        for (std::size_t asset = 0; asset < count; ++asset) stage_.showInAllModes(asset, 5);
    }

    /// One period of the countdown: some use of the tab, and then the time that is left of it.
    void refresh() {
        sharedService().forgetRequests();
        if (stage_.once(3)) changeContent();
        for (std::size_t step = stage_.below(6); step > 0; --step) {
            if (stage_.once(5)) stage_.disturb();
            stage_.act();
        }
        stage_.has3D = stage_.once(10);
        if (!stage_.tab->superview()) stage_.tab->showAtWindow();
        stage_.frames(30);
        stage_.tab->toggleFlarebox(true, false);
        stage_.tab->toggleFlarebox(false, false);
        stage_.tab->changeRefreshDataTime(period);
        MainQueue::advance(stage_.clock, period - 5);
        if (stage_.once(20)) requireThatItIsWell();
    }

    /// Once network and service are well, one refresh is enough.
    void requireThatItIsWell() {
        stage_.heal();
        stage_.settleIdle();
        stage_.tab->changeRefreshDataTime(period);
        MainQueue::advance(stage_.clock, period + 1);
        const bool isWell = stage_.settle([&] { return stage_.tab->currentAsset() && MainQueue::shared().isIdle(); }) &&
                            stage_.field("lbErrorMessage")->isHidden() && stage_.field("loadingView")->isHidden();
        wrong_ += !isWell;
        if (!isWell) std::printf("wrong after refresh %zu\n", done_);
    }

    void changeContent() {
        const std::string number = std::to_string(stage_.below(8)), base = sharedService().baseURL();
        sharedService().behave(
            "/game/common-assets/",
            {.body = R"([{"id":)" + number + R"(,"uid":"asset-)" + number + R"(","title":"Asset )" + number +
                     R"(","file_icon":")" + base + "/media/icons/halo-one.png?" + number + R"(","file_image":")" +
                     base + "/media/images/halo-one.png?" + number + R"("}])",
             .times = 1});
    }

    void print() {
        nextLine_ = RealClock::now() + available_ / lines;
        const Usage& now = usage_.back();
        std::printf("%8.2f %10zu %10.1f %8zu %12zu %8zu\n", stage_.clock.uptime() / 86400, done_,
                    static_cast<double>(now.heapBytes) / (1 << 20), now.threads, now.descriptors, wrong_);
        std::fflush(stdout);
    }

    bool isFlat() {
        constexpr double mebibyte = 1 << 20;
        const double heap = growth(usage_, &Usage::heapBytes) / mebibyte;
        const double kept = static_cast<double>(usage_.back().heapBytes) / mebibyte;
        const double threads = growth(usage_, &Usage::threads), descriptors = growth(usage_, &Usage::descriptors);
        std::printf("\n%.1f virtual days, %zu of %zu refreshes, peak %zu MiB\n", stage_.clock.uptime() / 86400, done_,
                    refreshes, peakMiB());
        std::printf("growth: heap %.2f MiB, threads %.0f, descriptors %.0f; wrong states %zu\n", heap, threads,
                    descriptors, wrong_);
        std::printf("heap after the end of host and tab: %.1f MiB\n",
                    static_cast<double>(Usage::now().heapBytes) / mebibyte);
        // Caches of pictures and of libraries, and connections, come and go.
        const bool isGood = heap <= kept / 5 && threads <= 4 && descriptors <= 16 && wrong_ == 0;
        report("soak, refreshes of a virtual week", done_, done_ - wrong_,
               isGood ? 0 : std::max<std::size_t>(wrong_, 1));
        return isGood;
    }

    const RealClock::duration available_;
    const RealClock::time_point deadline_;
    RealClock::time_point nextLine_ = RealClock::now();
    Stage stage_{static_cast<std::uint32_t>(setting("FLAREBOX_SEED", 1))};
    std::vector<Usage> usage_;
    std::size_t done_ = 0, wrong_ = 0;
};

}  // namespace
}  // namespace flarebox::endurance

int main(int argc, char** argv) {
    const double minutes = argc == 2 ? std::atof(argv[1]) : 0;
    if (!(minutes > 0)) {
        std::fprintf(stderr, "usage: %s MINUTES\n", argv[0]);
        return 2;
    }
    return flarebox::endurance::Week(minutes).play() ? 0 : 1;
}
