#include <Benchmarks/Support/Allocations.h>
#include <Host/Headless/CountingCompositor.h>
#include <Tests/Views/TabTesting.h>
#include <UIKit/BitmapCanvas.h>
#include <UIKit/CADisplayLink.h>
#include <UIKit/UICollectionView.h>
#include <UIKit/ViewAnimations.h>

namespace flarebox::testing {
namespace {

using benchmarks::allocationCount;

std::string listOf(int count) {
    std::string list = "[";
    for (int item = 1; item <= count; ++item) {
        const std::string number = std::to_string(item);
        list += (item > 1 ? "," : "") + (R"({"id": )" + number) + R"(, "uid": "u)" + number +
                R"(", "advertiser_uid": "a", "campaign_uid": "c", "file_icon": "/nothing", "title": "Number )" +
                number + R"("})";
    }
    return list + "]";
}

/// What a frame costs where little happens: counted, since time tells nothing on a busy machine.
class FrameTest : public TabTest {
protected:
    void SetUp() override {
        TabTest::SetUp();
        sharedService().behave("/game/common-assets/", {.body = listOf(20)});
        sharedService().behave("/nothing", {.status = 404});
        showLoadedTab();
        rest();
        // The countdown's first tick makes what each of them uses.
        runFrames(70);
    }
    void TearDown() override {
        host_->releaseTextures(compositor_);
        TabTest::TearDown();
    }
    void frame() {
        clock_.advance(1.0 / 60);
        host_->update();
        host_->draw(compositor_);
    }
    void rest() {
        do {
            ASSERT_TRUE(settleIdle());
            frame();
        } while (host_->needsDisplay() || ViewAnimations::isAnimating() || CADisplayLink::isAnyActive() ||
                 !MainQueue::shared().isIdle());
    }
    struct Work {
        std::uint64_t allocations = 0;
        std::size_t drawn = 0;
        std::uint64_t texts = 0;
        friend bool operator==(const Work&, const Work&) = default;
        friend void PrintTo(const Work& work, std::ostream* stream) {
            *stream << work.allocations << " allocations, " << work.drawn << " views drawn, " << work.texts
                    << " texts laid out";
        }
    };
    Work workOf(const std::function<void()>& action) {
        const Work before{allocationCount(), compositor_.texturesUpdated, laidOutTextCount()};
        action();
        return {allocationCount() - before.allocations, compositor_.texturesUpdated - before.drawn,
                laidOutTextCount() - before.texts};
    }
    void runFrames(int count) {
        for (int index = 0; index < count; ++index) frame();
    }
    /// Throws the list there and back and runs the frames in which it moves by itself.
    Work scrollThereAndBack() {
        Work all;
        const CGRect place = field("collectionView")->presentationRectInRoot();
        auto* list = field<UICollectionView>("collectionView");
        for (const double speed : {-1.0, -1.0, -1.0, 1.0, 1.0, 1.0}) {
            CGPoint finger{place.midX(), place.midY()};
            host_->pointerDown(1, finger);
            for (int move = 0; move < 4; ++move) {
                finger.x += speed * 30;
                clock_.advance(1.0 / 60);
                host_->pointerMoved(1, finger);
            }
            host_->pointerUp(1, finger);
            EXPECT_TRUE(list->isDecelerating());
            const Work work = workOf([&] {
                while (list->isDecelerating()) frame();
            });
            all = {all.allocations + work.allocations, all.drawn + work.drawn, all.texts + work.texts};
        }
        return all;
    }

    CountingCompositor compositor_;
};

TEST_F(FrameTest, AStillFrameDoesNothing) {
    // Long enough for the countdown to the next load to tick.
    EXPECT_EQ(workOf([&] { runFrames(130); }), Work()) << "closed";
    tab_->open();
    rest();
    EXPECT_EQ(workOf([&] { runFrames(130); }), Work()) << "open";
    EXPECT_GT(compositor_.quads.size(), 10U);
}

TEST_F(FrameTest, SlidingDrawsNothing) {
    for (int times = 0; times < 2; ++times) {
        tab_->toggleFlarebox();
        rest();
    }
    for (int times = 0; times < 4; ++times) {
        tab_->toggleFlarebox();
        ASSERT_TRUE(settleIdle());
        frame();
        EXPECT_EQ(workOf([&] { runFrames(15); }), Work());
        EXPECT_TRUE(ViewAnimations::isAnimating());
        rest();
    }
}

TEST_F(FrameTest, ScrollingThroughKnownCellsDoesNothing) {
    tab_->open();
    rest();
    scrollThereAndBack();
    rest();
    const std::size_t cells = field("collectionView")->subviews().size();
    EXPECT_EQ(scrollThereAndBack(), Work());
    EXPECT_EQ(field("collectionView")->subviews().size(), cells);
}

TEST_F(FrameTest, SelectingDrawsWhatChanges) {
    tab_->open();
    const AssetList assets = *tab_->assestsList();
    const auto select = [&](std::size_t index) {
        tab_->selectAsset(assets[index]);
        tab_->reloadCellVisibles();
        rest();
    };
    for (const std::size_t index : {18U, 19U, 18U}) select(index);
    const Work work = workOf([&] { select(19); });
    EXPECT_EQ(work.drawn, 1U) << "the title";
    EXPECT_EQ(work.texts, 0U);
}

TEST_F(FrameTest, ALongListHasFewCells) {
    AssetList& assets = *tab_->assestsList();
    while (assets.size() < 5000) assets.push_back(assets[assets.size() % 20]);
    tab_->updateFlarebox();
    tab_->open();
    rest();
    auto* list = field<UICollectionView>("collectionView");
    for (const CGFloat offset : {50'000.0, 100'000.0, 20.0}) {
        for (int step = 0; step < 40; ++step) {
            list->setContentOffset({offset + step * 30, 0});
            frame();
        }
    }
    EXPECT_LE(list->subviews().size(), 24U + 8U);
}

}  // namespace
}  // namespace flarebox::testing
