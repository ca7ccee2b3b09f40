#include <Tests/SceneKit/SampleModels.h>
#include <Tests/SceneKit/SharedEngine.h>

#include <Foundation/Clock.h>
#include <Foundation/Shutdown.h>
#include <Host/Headless/HeadlessHost.h>
#include <SceneKit/SCNView.h>
#include <SceneKit/SceneRenderer.h>
#include <SceneKit/ZorbRenderer.h>
#include <SceneKit/ZorbRendererUtils.h>
#include <Tests/Support/TemporaryDirectory.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIWindow.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

namespace flarebox::testing {
namespace {

/// A view in the window of a host without a display, on a clock that the test moves.
class SceneView : public ::testing::Test {
protected:
    void SetUp() override {
        if (!canDraw) GTEST_SKIP() << "this build shows no models";
    }
    SceneView() {
        Clock::setCurrent(&clock_);
        host_ = std::make_unique<HeadlessHost>(CGSize{400, 320}, 1);
        view_ = make<SCNView>();
        view_->setFrame({{50, 40}, {300, 240}});
        view_->setBackgroundColor(UIColor::blackColor());
        view_->setFailureHandler(
            [this](const Ref<NSError>& error) { failures_.push_back(error->localizedDescription()); });
        UIApplication::sharedApplication().keyWindow()->addSubview(*view_);
        ZorbRendererUtils::loadDefaultSceneForView(*view_);
    }
    ~SceneView() override {
        view_ = nullptr;
        host_ = nullptr;
        Clock::setCurrent(nullptr);
    }

    void frame(double seconds = 1.0 / 64) {
        clock_.advance(seconds);
        host_->update(1e9);
        if (!host_->needsDisplay()) return;
        host_->drawFrame();
        ++frames_;
    }
    bool runUntil(const std::function<bool()>& condition) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > deadline) return false;
            frame();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }
    bool runUntilPicture() {
        const std::size_t before = view_->pictureCount();
        return runUntil([&] { return view_->pictureCount() > before + 1; });
    }
    /// Until what was asked for has been drawn and shown.
    bool runUntilStill() {
        // The next drawing is what starts rendering.
        for (int i = 0; i < 3; ++i) frame();
        return runUntil([&] { return !view_->isRendering() && view_->pictureCount() > 0; });
    }

    Ref<SCNNode> show(const ModelBuilder& model, std::string_view name = "model") {
        ZorbRenderer renderer;
        const Ref<SCNNode> node = renderer.createSCNNodeFromFile(files_.write(name, model.file()));
        EXPECT_TRUE(node) << renderer.lastError()->localizedDescription();
        if (!node) return nullptr;
        ZorbRendererUtils::scaleNode(*node, *view_);
        view_->scene()->rootNode().addChildNode(*node);
        return node;
    }
    std::uint32_t at(int x, int y) { return host_->picture().pixelAt(x, y); }
    std::vector<std::uint32_t> row(int y) {
        std::vector<std::uint32_t> pixels;
        for (int x = 0; x < 400; ++x) pixels.push_back(at(x, y));
        return pixels;
    }

    VirtualClock clock_;
    TemporaryDirectory files_;
    std::unique_ptr<HeadlessHost> host_;
    Ref<SCNView> view_;
    std::vector<std::string> failures_;
    int frames_ = 0;
};

constexpr std::uint32_t red(std::uint32_t pixel) {
    return pixel >> 16 & 255;
}
constexpr std::uint32_t green(std::uint32_t pixel) {
    return pixel >> 8 & 255;
}

TEST_F(SceneView, ShowsTheModelWhereItIs) {
    show(cubeModel());
    ASSERT_TRUE(runUntilPicture());
    frame();
    EXPECT_GT(red(at(200, 160)), 200U);
    EXPECT_LT(green(at(200, 160)), 60U);
    EXPECT_EQ(at(60, 50), 0xFF000000) << "the model does not reach the corner";
    EXPECT_EQ(at(20, 160), 0U) << "nothing beside the view";
    EXPECT_TRUE(failures_.empty()) << failures_[0];
}

TEST_F(SceneView, ShowsNoOtherModelThanItsOwn) {
    const Ref<SCNNode> first = show(cubeModel(), "red");
    ASSERT_TRUE(runUntilPicture());
    // Another picture of the first one is being drawn by now.
    frame();
    first->removeFromParentNode();
    show(cubeModel(unlit("[0,1,0,1]")), "green");
    const std::size_t before = view_->pictureCount();
    frame();
    ASSERT_TRUE(runUntil([&] {
        EXPECT_LE(red(at(200, 160)), green(at(200, 160))) << std::hex << at(200, 160);
        return HasFailure() || view_->pictureCount() > before + 1;
    }));
    EXPECT_GT(green(at(200, 160)), 200U);
}

TEST_F(SceneView, TurnsByItselfAndByTheFinger) {
    show(cubeModel(R"({"pbrMetallicRoughness":{"baseColorFactor":[1,0,0,1],"metallicFactor":0}})"));
    ASSERT_TRUE(runUntilPicture());
    const double before = view_->yaw();
    ASSERT_TRUE(runUntil([&] { return view_->yaw() > before + 0.1; })) << "turns slowly by itself";

    host_->pointerDown(0, {200, 160});
    ASSERT_TRUE(runUntilStill());
    frame();
    const std::vector<std::uint32_t> held = row(160);
    const double heldYaw = view_->yaw();
    for (int i = 1; i <= 10; ++i) {
        host_->pointerMoved(0, {200 + i * 12.0, 160});
        frame();
    }
    EXPECT_NEAR(view_->yaw() - heldYaw, 120.0 / 240 * 3.14159, 0.05) << "a quarter turn over half the smaller side";
    host_->pointerUp(0, {320, 160});
    const double released = view_->yaw();
    ASSERT_TRUE(runUntilStill());
    frame();
    EXPECT_GT(view_->yaw(), released + 0.1) << "runs on when let go";
    EXPECT_NE(row(160), held) << "a turned model looks different";
}

TEST_F(SceneView, ZoomsSoftlyAndWithinLimits) {
    show(cubeModel());
    ASSERT_TRUE(runUntilPicture());
    view_->zoom(1.5);
    EXPECT_EQ(view_->magnification(), 1);
    ASSERT_TRUE(runUntilStill());
    EXPECT_EQ(view_->magnification(), 1.5);
    view_->zoom(1000);
    ASSERT_TRUE(runUntilStill());
    EXPECT_EQ(view_->magnification(), 4);
    frame();
    EXPECT_GT(red(at(70, 60)), 150U) << "the model fills the view";
    for (const double nonsense : {0.0, -1.0, std::nan(""), HUGE_VAL}) view_->zoom(nonsense);
    ASSERT_TRUE(runUntilStill());
    EXPECT_EQ(view_->magnification(), 4);
}

TEST_F(SceneView, ZoomsByTwoFingersAndByTheWheel) {
    show(cubeModel());
    ASSERT_TRUE(runUntilPicture());
    host_->pointerDown(0, {180, 160});
    host_->pointerDown(1, {220, 160});
    for (int i = 1; i <= 5; ++i) {
        host_->pointerMoved(0, {180 - i * 4.0, 160});
        host_->pointerMoved(1, {220 + i * 4.0, 160});
        frame();
    }
    host_->pointerUp(0, {160, 160});
    host_->pointerUp(1, {240, 160});
    ASSERT_TRUE(runUntilStill());
    EXPECT_NEAR(view_->magnification(), 2, 0.01) << "twice as far apart, twice as large";
    host_->scrolled({200, 160}, 0, 100);
    ASSERT_TRUE(runUntilStill());
    EXPECT_LT(view_->magnification(), 1.9);
}

TEST_F(SceneView, CostsNothingWhileItCannotBeSeen) {
    const struct {
        const char* name;
        std::function<void()> vanish, reappear;
    } ways[] = {
        {"hidden", [&] { view_->setHidden(true); }, [&] { view_->setHidden(false); }},
        {"transparent", [&] { view_->setAlpha(0); }, [&] { view_->setAlpha(1); }},
        {"out of its window", [&] { view_->removeFromSuperview(); },
         [&] { UIApplication::sharedApplication().keyWindow()->addSubview(*view_); }},
        {"out of sight",
         [&] {
             view_->setFrame({{500, 400}, {300, 240}});
         },
         [&] {
             view_->setFrame({{50, 40}, {300, 240}});
         }},
    };
    show(cubeModel());
    for (const auto& [name, vanish, reappear] : ways) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(runUntilPicture());
        vanish();
        EXPECT_TRUE(runUntil([&] { return !view_->isRendering(); }));
        const std::size_t pictures = view_->pictureCount();
        for (int i = 0; i < 20; ++i) frame();
        EXPECT_EQ(view_->pictureCount(), pictures);
        EXPECT_FALSE(view_->isRendering());
        EXPECT_FALSE(host_->needsDisplay()) << "the host can sleep";
        reappear();
    }
    EXPECT_TRUE(runUntilPicture()) << "goes on when it is seen again";
}

TEST_F(SceneView, HasNothingToDoWithoutAModel) {
    ASSERT_TRUE(runUntilStill());
    EXPECT_LE(view_->pictureCount(), 2U) << "nothing turns";
    view_->setScene(nullptr);
    for (int i = 0; i < 20; ++i) frame();
    EXPECT_FALSE(view_->isRendering());
    EXPECT_EQ(at(200, 160), 0xFF000000) << "its background stays";
}

TEST_F(SceneView, TellsOnceWhatItCannotShow) {
    const Ref<SCNNode> node = show(cubeModel());
    files_.write("model", cubeModel().file().substr(0, 200));
    ASSERT_TRUE(runUntilStill()) << "nothing is drawn again and again";
    ASSERT_EQ(failures_.size(), 1U);
    EXPECT_NE(failures_[0].find("cut off"), std::string::npos) << failures_[0];
    EXPECT_FALSE(view_->hasModel());
    node->removeFromParentNode();
    show(cubeModel(), "another");
    ASSERT_TRUE(runUntilPicture());
    EXPECT_EQ(failures_.size(), 1U);
}

TEST_F(SceneView, GoesOnWithoutGraphics) {
    auto& renderer = detail::SceneRenderer::shared();
    renderer.stop();
    renderer.setEngineMaker([](std::string& reason) {
        reason = "there is no driver";
        return nullptr;
    });
    show(cubeModel());
    EXPECT_TRUE(runUntil([&] { return !failures_.empty(); }));
    EXPECT_EQ(failures_, std::vector<std::string>{"there is no driver"});
    EXPECT_EQ(SCNView::unavailableReason(), "there is no driver");
    for (int i = 0; i < 20; ++i) frame();
    EXPECT_FALSE(view_->isRendering());
    EXPECT_EQ(view_->pictureCount(), 0U);
    EXPECT_EQ(failures_.size(), 1U);
    renderer.stop();
    renderer.setEngineMaker(nullptr);
}

TEST_F(SceneView, StopsSoonWithAPictureUnderWay) {
    show(cubeModel());
    ASSERT_TRUE(runUntilPicture());
    for (int i = 0; i < 5; ++i) {
        frame();
        const auto start = std::chrono::steady_clock::now();
        Shutdown::run();
        // What counts is that it waits for one picture and no more; a loaded machine is slower than the rest.
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
        EXPECT_FALSE(detail::SceneRenderer::shared().isRunning());
        ASSERT_TRUE(runUntilPicture()) << "starts anew when needed";
    }
}

std::size_t countIn(const char* directory) {
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

std::size_t residentKiB() {
    std::ifstream statm("/proc/self/statm");
    std::size_t total = 0, resident = 0;
    statm >> total >> resident;
    return resident * 4;
}

TEST_F(SceneView, LeavesNothingOfModelsBehind) {
    std::size_t threads = 0, files = 0, memory = 0;
    for (int round = 0; round < 60; ++round) {
        const Ref<SCNNode> node = show(round % 2 ? textureModel() : animated());
        if (round % 3) {
            ASSERT_TRUE(runUntilPicture());
        }
        node->removeFromParentNode();
        frame();
        if (round != 20) continue;
        threads = countIn("/proc/self/task");
        files = countIn("/proc/self/fd");
        memory = residentKiB();
    }
    EXPECT_EQ(countIn("/proc/self/task"), threads);
    EXPECT_EQ(countIn("/proc/self/fd"), files);
    // A sanitizer keeps what was freed for a while.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr std::size_t mostGrowth = 1U << 20;
#else
    constexpr std::size_t mostGrowth = 24U << 10;
#endif
    EXPECT_LT(residentKiB(), memory + mostGrowth);
}

TEST(SceneNodes, AreATree) {
    const auto a = make<SCNNode>(), b = make<SCNNode>(), c = make<SCNNode>();
    a->addChildNode(*b);
    b->addChildNode(*c);
    c->addChildNode(*a);
    EXPECT_FALSE(a->parentNode()) << "no node lies below itself";
    a->addChildNode(*c);
    EXPECT_EQ(c->parentNode(), a.get());
    EXPECT_EQ(a->childNodes().size(), 2U);
    EXPECT_TRUE(b->childNodes().empty());
    b->removeFromParentNode();
    b->removeFromParentNode();
    EXPECT_FALSE(b->parentNode());
    EXPECT_EQ(a->childNodes().size(), 1U);
}

}  // namespace
}  // namespace flarebox::testing
