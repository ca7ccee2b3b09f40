#include <Benchmarks/Panel/FrameMeter.h>
#include <Benchmarks/Panel/ImmediatePanel.h>
#include <Benchmarks/Panel/Panel.h>
#include <Benchmarks/Support/Allocations.h>
#include <UIKit/BitmapCanvas.h>
#include <UIKit/UICollectionView.h>

#include <benchmark/benchmark.h>

#include <cmath>

// Each frame is the host's whole frame: the queue, animations and layout by `UIHost::update`, `needsDisplay`, and
// `draw` with a compositor that counts. What the player does (an input event, a call of the game) comes between frames
// where a row is about what follows from it, and belongs to the frame where a row is about itself.
namespace flarebox::benchmarks {

namespace {

constexpr std::size_t frames = 2000, few = 20, many = 100'000;
constexpr int framesOfSlide = 18;
/// Points a second.
constexpr double throwSpeed = 2000;

enum class Caches { Warm, Cold };

/// What is drawn and laid out meanwhile.
class WorkCounter {
public:
    explicit WorkCounter(Panel& panel) : panel_(panel) {}
    void report(benchmark::State& state) const {
        state.counters["views_drawn"] = static_cast<double>(panel_.compositor().textures - textures_);
        state.counters["texts_laid_out"] = static_cast<double>(laidOutTextCount() - texts_);
    }

private:
    Panel& panel_;
    std::size_t textures_ = panel_.compositor().textures;
    std::uint64_t texts_ = laidOutTextCount();
};

void hostFrame(Panel& panel) {
    panel.advanceClock();
    panel.host().update();
    benchmark::DoNotOptimize(panel.host().needsDisplay());
    panel.draw();
}

// The kit.

void still(benchmark::State& state, bool open, Caches caches) {
    for (auto _ : state) {
        Panel panel(few);
        if (open) panel.open();
        const WorkCounter work(panel);
        FrameMeter meter(frames);
        while (meter.frames() < frames) {
            if (caches == Caches::Cold) emptyCaches();
            meter.measure([&] { hostFrame(panel); });
        }
        meter.report(state);
        work.report(state);
    }
}

void sliding(benchmark::State& state, Caches caches) {
    for (auto _ : state) {
        Panel panel(few);
        panel.open();
        panel.tab().close();
        panel.rest();
        const WorkCounter work(panel);
        FrameMeter meter(frames), toggling(frames);
        while (meter.frames() < frames) {
            toggling.measure([&] { panel.tab().toggleFlarebox(); });
            for (int frame = 0; frame < framesOfSlide && meter.frames() < frames; ++frame) {
                if (caches == Caches::Cold) emptyCaches();
                meter.measure([&] { hostFrame(panel); });
            }
            panel.rest();
        }
        meter.report(state);
        work.report(state);
        state.counters["toggling_us"] = toggling.median() * 1e6;
    }
}

void scrolling(benchmark::State& state, std::size_t assets) {
    for (auto _ : state) {
        Panel panel(assets);
        panel.open();
        const auto& list = panel.field<UICollectionView>("collectionView");
        double direction = 1;
        const auto throwOnce = [&](auto&& frame) {
            panel.throwList(direction * throwSpeed);
            while (list.isDecelerating()) frame();
            const double end = list.contentSize().width - list.bounds().width();
            if (list.contentOffset().x > std::min(end, 2000.0) - 1) direction = -1;
            if (list.contentOffset().x < 1) direction = 1;
        };
        // There and back: all cells exist then.
        for (int times = 0; times < 8; ++times) throwOnce([&] { panel.frame(); });
        const WorkCounter work(panel);
        FrameMeter meter(frames);
        while (meter.frames() < frames) {
            throwOnce([&] {
                if (meter.frames() < frames) return meter.measure([&] { hostFrame(panel); });
                panel.frame();
            });
        }
        meter.report(state);
        work.report(state);
    }
}

/// What reloading the list and showing it asks the heap for.
void listMemory(benchmark::State& state, std::size_t assets) {
    for (auto _ : state) {
        Panel panel(assets);
        panel.open();
        auto& list = panel.field<UICollectionView>("collectionView");
        const std::uint64_t before = allocatedBytes();
        list.reloadData();
        panel.frame();
        const std::uint64_t bytes = allocatedBytes() - before;
        state.SetIterationTime(1e-9);
        state.counters["KiB"] = static_cast<double>(bytes) / 1024;
        state.counters["cells"] = static_cast<double>(list.subviews().size());
    }
}

/// Whether an event's frame is measured with the drawing of what changed, or up to it. Frames that follow from the
/// event are measured as well: the worst of all is what a player would feel.
enum class Part { LayoutAlone, WithDrawing };

void measureEvent(Panel& panel, Part part, FrameMeter& first, FrameMeter& following,
                  const std::function<void()>& event) {
    constexpr int framesAfter = 3;
    const auto run = [&](FrameMeter& meter, bool isFirst) {
        panel.advanceClock();
        const auto layOut = [&] {
            if (isFirst) event();
            panel.host().update();
        };
        if (part == Part::WithDrawing)
            return meter.measure([&] {
                layOut();
                panel.draw();
            });
        meter.measure(layOut);
        panel.draw();
    };
    run(first, true);
    for (int frame = 0; frame < framesAfter; ++frame) run(following, false);
    panel.rest();
}

void reportEvent(benchmark::State& state, const FrameMeter& first, const FrameMeter& following) {
    first.report(state);
    state.counters["worst_us"] = std::max(first.worst(), following.worst()) * 1e6;
}

void selecting(benchmark::State& state, Part part, bool again) {
    for (auto _ : state) {
        Panel panel(few);
        panel.open();
        const AssetList assets = *panel.tab().assestsList();
        const auto selectAll = [&](FrameMeter& first, FrameMeter& following) {
            for (std::size_t index = 1; index <= few; ++index) {
                measureEvent(panel, part, first, following, [&] {
                    panel.tab().selectAsset(assets[index % few]);
                    panel.tab().reloadCellVisibles();
                });
            }
        };
        FrameMeter first(few * 10), following(few * 30);
        if (again) {
            FrameMeter unused(few * 4);
            selectAll(unused, unused);
        }
        const WorkCounter work(panel);
        for (int round = 0; round < (again ? 10 : 1); ++round) selectAll(first, following);
        reportEvent(state, first, following);
        work.report(state);
    }
}

void rotating(benchmark::State& state, Part part) {
    for (auto _ : state) {
        Panel panel(few);
        panel.open();
        FrameMeter first(100), following(300);
        bool isPortrait = false;
        const auto rotate = [&] {
            isPortrait = !isPortrait;
            panel.host().setScreen(isPortrait ? Panel::portrait : Panel::landscape, 2);
            panel.host().setOrientation(isPortrait ? UIDeviceOrientation::Portrait
                                                   : UIDeviceOrientation::LandscapeLeft);
        };
        FrameMeter unused(8);
        for (int times = 0; times < 2; ++times) measureEvent(panel, part, unused, unused, rotate);
        const WorkCounter work(panel);
        for (int times = 0; times < 50; ++times) measureEvent(panel, part, first, following, rotate);
        reportEvent(state, first, following);
        work.report(state);
    }
}

// The peer, which makes everything anew each frame whatever happens.

void immediate(benchmark::State& state, std::size_t assets, Caches caches,
               const std::function<void(ImmediatePanel&, int)>& frame) {
    for (auto _ : state) {
        ImmediatePanel panel(assets);
        FrameMeter meter(frames);
        for (int index = 0; meter.frames() < frames; ++index) {
            if (caches == Caches::Cold) emptyCaches();
            meter.measure([&] { frame(panel, index); });
        }
        meter.report(state);
    }
}

/// 0 to 1 and back within `period` frames.
float swing(int frame, int period) {
    return 0.5F - 0.5F * std::cos(static_cast<float>(frame) / static_cast<float>(period) * 6.2831853F);
}

void stayStill(ImmediatePanel& panel, int) {
    benchmark::DoNotOptimize(panel.frame(1, 0));
}
void slide(ImmediatePanel& panel, int frame) {
    benchmark::DoNotOptimize(panel.frame(swing(frame, 2 * framesOfSlide), 0));
}
void scroll(ImmediatePanel& panel, int frame) {
    benchmark::DoNotOptimize(panel.frame(1, swing(frame, 240)));
}

template <class Function, class... Arguments>
void add(const char* name, Function function, Arguments... arguments) {
    benchmark::RegisterBenchmark(name, [=](benchmark::State& state) { function(state, arguments...); })
        ->UseManualTime()
        ->Iterations(1);
}

[[maybe_unused]] const bool added = [] {
    add("Panel/still closed/Flarebox", still, false, Caches::Warm);
    add("Panel/still open/Flarebox", still, true, Caches::Warm);
    add("Panel/still cold/Flarebox", still, true, Caches::Cold);
    add("Panel/sliding/Flarebox", sliding, Caches::Warm);
    add("Panel/sliding cold/Flarebox", sliding, Caches::Cold);
    add("Panel/scrolling/Flarebox", scrolling, few);
    add("Panel/scrolling 100,000/Flarebox", scrolling, many);
    add("Panel/list memory 20/Flarebox", listMemory, few);
    add("Panel/list memory 100,000/Flarebox", listMemory, many);
    add("Panel/selecting, layout/Flarebox", selecting, Part::LayoutAlone, true);
    add("Panel/selecting, drawing/Flarebox", selecting, Part::WithDrawing, true);
    add("Panel/selecting first, layout/Flarebox", selecting, Part::LayoutAlone, false);
    add("Panel/selecting first, drawing/Flarebox", selecting, Part::WithDrawing, false);
    add("Panel/rotating, layout/Flarebox", rotating, Part::LayoutAlone);
    add("Panel/rotating, drawing/Flarebox", rotating, Part::WithDrawing);
    add("Panel/still/Dear ImGui", immediate, few, Caches::Warm, stayStill);
    add("Panel/still cold/Dear ImGui", immediate, few, Caches::Cold, stayStill);
    add("Panel/sliding/Dear ImGui", immediate, few, Caches::Warm, slide);
    add("Panel/sliding cold/Dear ImGui", immediate, few, Caches::Cold, slide);
    add("Panel/scrolling/Dear ImGui", immediate, few, Caches::Warm, scroll);
    return true;
}();

}  // namespace

}  // namespace flarebox::benchmarks
