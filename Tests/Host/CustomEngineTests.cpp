// The adapter that Docs/hosts.md shows does what it is there for.

#include <Examples/CustomEngine/EngineHost.h>
#include <Host/Headless/SoftwareCompositor.h>
#include <Tests/Views/TabTesting.h>
#include <UIKit/UIDevice.h>
#include <UIKit/UIScreen.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace flarebox::testing {
namespace {

/// The tab in a game on the engine, of whose pixels five make four points.
class CustomEngineTest : public TabTest {
protected:
    static constexpr double density = 1.25;

    void SetUp() override {
        TabTest::SetUp();
        host_ = nullptr;
        auto host = std::make_unique<EngineHost>(renderer_, density);
        engineHost_ = host.get();
        host_ = std::move(host);
    }

    bool send(engine::EventKind kind, CGPoint point, float notches = 0, engine::Key key = engine::Key::None) {
        const bool isTaken = engineHost_->handle(
            {kind, static_cast<float>(point.x * density), static_cast<float>(point.y * density), notches, key});
        host_->update();
        return isTaken;
    }
    bool click(std::string_view name) {
        const CGRect rect = field(name)->presentationRectInRoot();
        const CGPoint point{rect.midX(), rect.midY()};
        const bool isTaken = send(engine::EventKind::MouseDown, point);
        return send(engine::EventKind::MouseUp, point) && isTaken;
    }

    /// The share of pixels that are clearly others than those that memory shows. Some are: on an edge it is rounding
    /// that decides.
    double difference() {
        SoftwareCompositor software(renderer_.width(), renderer_.height());
        software.clear(0xFF336699);
        host_->draw(software);
        host_->releaseTextures(software);
        renderer_.clear(0x33, 0x66, 0x99);
        EngineCompositor compositor(renderer_);
        host_->draw(compositor);
        host_->releaseTextures(compositor);
        int others = 0;
        for (int y = 0; y < renderer_.height(); ++y) {
            for (int x = 0; x < renderer_.width(); ++x) {
                const std::uint32_t one = renderer_.pixel(x, y), other = software.pixelAt(x, y);
                others += std::ranges::any_of(std::array{0, 8, 16}, [&](int shift) {
                    return std::abs(static_cast<int>(one >> shift & 255) - static_cast<int>(other >> shift & 255)) > 4;
                });
            }
        }
        return static_cast<double>(others) / (renderer_.width() * renderer_.height());
    }

    engine::Renderer renderer_{800, 500};
    EngineHost* engineHost_ = nullptr;
};

TEST_F(CustomEngineTest, ShowsTheTabAndPlaysIt) {
    using enum engine::EventKind;
    constexpr double tolerance = 0.005;
    constexpr CGPoint beside{600, 100};
    showLoadedTab();
    EXPECT_FALSE(send(MouseDown, beside)) << "the game's";
    EXPECT_FALSE(send(MouseUp, beside));
    EXPECT_TRUE(click("btnOpen"));
    pass(0.15);
    EXPECT_LE(difference(), tolerance) << "sliding";
    pass(0.5);
    EXPECT_TRUE(tab_->isOpened());

    const CGRect list = field("collectionView")->presentationRectInRoot();
    const CGPoint inList{list.midX(), list.midY()};
    EXPECT_TRUE(send(MouseMove, inList));
    EXPECT_TRUE(send(Wheel, inList, -1));
    EXPECT_FALSE(send(Wheel, beside, -1));
    EXPECT_TRUE(send(MouseDown, inList));
    send(Deactivate, {});
    EXPECT_FALSE(send(MouseMove, beside)) << "the drag has ended";
    send(MouseLeave, {});
    EXPECT_FALSE(send(KeyPress, {}, 0, engine::Key::Letter));

    renderer_.resize(500, 800);
    send(Resize, {});
    EXPECT_EQ(UIScreen::mainScreen().bounds(), CGRectMake(0, 0, 400, 640));
    EXPECT_EQ(UIDevice::currentDevice().orientation(), UIDeviceOrientation::Portrait);
    pass(0.5);
    EXPECT_LE(difference(), tolerance) << "portrait";

    engineHost_->draw();
    EXPECT_GT(renderer_.spriteCount(), 0);
    tab_ = nullptr;
    host_ = nullptr;
    EXPECT_EQ(renderer_.spriteCount(), 0);
}

TEST(HostsPageTest, TheAdapterIsAsShortAsThePageSays) {
    std::ptrdiff_t lines = 0;
    for (const char* name : {"EngineHost.h", "EngineHost.cpp"}) {
        std::ifstream file(REPOSITORY "/Examples/CustomEngine/" + std::string(name));
        ASSERT_TRUE(file) << name;
        lines += std::count(std::istreambuf_iterator<char>(file), {}, '\n');
    }
    EXPECT_LT(lines, 150);
}

}  // namespace
}  // namespace flarebox::testing
