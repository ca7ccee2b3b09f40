#include <Tests/SceneKit/ModelBuilder.h>

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
#include <functional>
#include <thread>

namespace flarebox::testing {
namespace {

/// A view in the window of a host without a display, on a clock that the test moves.
class SceneView : public ::testing::Test {
protected:
    SceneView() {
        Clock::setCurrent(&clock_);
        host_ = std::make_unique<HeadlessHost>(CGSize{400, 320}, 1);
        view_ = make<SCNView>();
        view_->setFrame({{50, 40}, {300, 240}});
        view_->setBackgroundColor(UIColor::blackColor());
        view_->setFailureHandler([this](const Ref<NSError>& error) { failures_.push_back(error->localizedDescription()); });
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

    VirtualClock clock_;
    TemporaryDirectory files_;
    std::unique_ptr<HeadlessHost> host_;
    Ref<SCNView> view_;
    std::vector<std::string> failures_;
    int frames_ = 0;
};

constexpr std::uint32_t red(std::uint32_t pixel) { return pixel >> 16 & 255; }
constexpr std::uint32_t green(std::uint32_t pixel) { return pixel >> 8 & 255; }

TEST_F(SceneView, ShowsTheModelWhereItIs) {
    show(cubeModel());
    ASSERT_TRUE(runUntilPicture());
    frame();
    host_->writePNG("/tmp/scene-view.png");
    EXPECT_GT(red(at(200, 160)), 200U);
    EXPECT_LT(green(at(200, 160)), 60U);
    EXPECT_EQ(at(60, 50), 0xFF000000) << "the model does not reach the corner";
    EXPECT_EQ(at(20, 160), 0U) << "nothing beside the view";
    EXPECT_TRUE(failures_.empty()) << failures_[0];
}

}  // namespace
}  // namespace flarebox::testing
