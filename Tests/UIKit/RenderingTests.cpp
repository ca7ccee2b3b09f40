#include <Foundation/Clock.h>
#include <Foundation/LogSink.h>
#include <Host/Headless/CountingCompositor.h>
#include <Host/Headless/HeadlessHost.h>
#include <Tests/Support/TemporaryDirectory.h>
#include <UIKit/LayerRenderer.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UILabel.h>
#include <UIKit/UIWindow.h>
#include <UIKit/ViewAnimations.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace flarebox {
namespace {

constexpr UIColor red = UIColor::rgb(0xFF0000), green = UIColor::rgb(0x00FF00), blue = UIColor::rgb(0x0000FF);

/// Fills itself with a colour of its own, and counts.
class Painted : public UIView {
public:
    UIColor color = green;
    int drawn = 0;

    bool drawsContent() const override { return true; }
    void drawRect(Canvas& canvas, const CGRect& bounds) override {
        ++drawn;
        if (!color.isClear()) canvas.fillRoundedRect(bounds, {}, color);
    }
};

template <class T = UIView>
Ref<T> add(UIView& parent, const CGRect& frame, const UIColor& color = UIColor::clearColor()) {
    auto view = make<T>();
    view->setFrame(frame);
    view->setBackgroundColor(color);
    parent.addSubview(*view);
    return view;
}

/// Each of the four bytes as near as that.
::testing::AssertionResult isNear(std::uint32_t actual, std::uint32_t expected, int distance = 2) {
    for (const int shift : {24, 16, 8, 0}) {
        const int a = static_cast<int>(actual >> shift & 255), b = static_cast<int>(expected >> shift & 255);
        if (std::abs(a - b) > distance)
            return ::testing::AssertionFailure() << std::hex << actual << " is not " << expected;
    }
    return ::testing::AssertionSuccess();
}

class Rendering : public ::testing::Test {
protected:
    Rendering() { root_->setFrame({{}, {100, 80}}); }

    /// The picture at two pixels a point, over black unless told otherwise.
    void draw(std::uint32_t below = 0xFF000000) {
        picture_.clear(below);
        renderer_.draw(picture_, 2);
    }
    /// The pixel at a point.
    std::uint32_t at(CGFloat x, CGFloat y) const {
        return picture_.pixelAt(static_cast<int>(x * 2), static_cast<int>(y * 2));
    }

    Ref<UIView> root_ = make<UIView>();
    LayerRenderer renderer_{*root_};
    SoftwareCompositor picture_{200, 160};
};

TEST_F(Rendering, OrderOpacityClipAndHiding) {
    auto back = add(*root_, {{10, 10}, {40, 40}}, red);
    auto front = add(*root_, {{30, 30}, {40, 40}}, blue);
    auto inner = add<Painted>(*front, {{-10, 20}, {30, 30}});
    draw();
    EXPECT_EQ(at(15, 15), 0xFFFF0000);
    EXPECT_EQ(at(40, 40), 0xFF0000FF);
    EXPECT_EQ(at(25, 55), 0xFF00FF00) << "not clipped unless asked for";
    EXPECT_EQ(at(5, 5), 0xFF000000);

    front->setClipsToBounds(true);
    front->setAlpha(0.5);
    inner->setAlpha(0.5);
    draw();
    EXPECT_TRUE(isNear(at(40, 40), 0xFF7F0080));
    EXPECT_TRUE(isNear(at(40, 60), 0xFF004060)) << "the opacities of both";
    EXPECT_EQ(at(25, 55), 0xFF000000);
    EXPECT_TRUE(isNear(at(31, 31), 0xFF7F0080));

    inner->setHidden(true);
    root_->bringSubviewToFront(*back);
    draw();
    EXPECT_EQ(at(40, 40), 0xFFFF0000);
    EXPECT_TRUE(isNear(at(40, 60), 0xFF000080));
    back->setAlpha(0);
    front->setHidden(true);
    draw(0x00000000);
    EXPECT_EQ(at(40, 40), 0U);
    EXPECT_EQ(renderer_.statistics().quads, 0U);
}

TEST_F(Rendering, ScrollingAndPartsOfPixels) {
    auto list = add(*root_, {{10, 10}, {50, 50}});
    list->setClipsToBounds(true);
    auto cell = add<Painted>(*list, {{100, 0}, {20, 20}});
    list->setBoundsOrigin({90, -5});
    draw();
    EXPECT_EQ(at(20, 15), 0xFF00FF00);
    EXPECT_EQ(at(19.5, 15), 0xFF000000);
    EXPECT_EQ(at(25, 34.5), 0xFF00FF00);
    EXPECT_EQ(at(25, 35), 0xFF000000);
    // At rest everything lies on whole pixels, so that edges and text are sharp.
    list->setBoundsOrigin({89.9, -5.1});
    draw();
    EXPECT_EQ(at(20, 15), 0xFF00FF00);
    EXPECT_EQ(at(19.5, 15), 0xFF000000);
    list->setBoundsOrigin({125, 0});
    draw();
    EXPECT_EQ(renderer_.statistics().quads, 0U);
    EXPECT_EQ(cell->drawn, 1);
}

/// The look of a view without content is stretched from a small bitmap: it has to equal one drawn in full.
TEST_F(Rendering, StretchedLooksEqualThoseDrawnInFull) {
    struct Look {
        const char* what;
        UIColor background;
        CornerRadii radii;
        CGFloat border;
        CALayer::Shadow shadow;
    };
    const Look looks[] = {
        {"rounded", red, CornerRadii::all(9), 0, {}},
        {"one corner", blue.withAlpha(0.4F), {0, 12, 3, 0}, 0, {}},
        {"border", UIColor::clearColor(), CornerRadii::all(6), 2, {}},
        {"square border", red, {}, 1.5, {}},
        {"shadow", red, CornerRadii::all(5), 0, {6, {}, UIColor::blackColor()}},
        {"shadow aside", green, CornerRadii::all(4), 1, {4, {3, -2}, blue.withAlpha(0.5F)}},
        {"shadow alone", UIColor::clearColor(), {}, 0, {5, {0, 4}, red}},
    };
    for (const Look& look : looks) {
        for (const CGRect& frame :
             {CGRectMake(15, 12, 64, 50), CGRectMake(15, 12, 64, 9), CGRectMake(30, 20, 14.5, 40)}) {
            std::vector<std::uint32_t> pictures[2];
            std::size_t uploaded[2];
            for (const bool isFull : {false, true}) {
                Ref<UIView> view = isFull ? Ref<UIView>(make<Painted>()) : make<UIView>();
                if (isFull) static_cast<Painted&>(*view).color = UIColor::clearColor();
                view->setFrame(frame);
                view->setBackgroundColor(look.background);
                view->layer().setCornerRadii(look.radii);
                view->layer().setBorderWidth(look.border);
                view->layer().setBorderColor(green);
                view->layer().setShadow(look.shadow);
                root_->addSubview(*view);
                draw(0xFF808080);
                pictures[isFull].assign(picture_.pixels().begin(), picture_.pixels().end());
                CountingCompositor counting;
                LayerRenderer(*root_).draw(counting, 2);
                uploaded[isFull] = counting.pixelsUploaded;
                view->removeFromSuperview();
            }
            int worst = 0;
            for (std::size_t i = 0; i < pictures[0].size(); ++i) {
                for (const int shift : {16, 8, 0})
                    worst = std::max(worst, std::abs(static_cast<int>(pictures[0][i] >> shift & 255) -
                                                     static_cast<int>(pictures[1][i] >> shift & 255)));
            }
            EXPECT_LE(worst, 3) << look.what << " " << frame.width() << "x" << frame.height();
            if (frame.height() != 50) continue;
            EXPECT_LT(uploaded[0] * 2, uploaded[1]) << look.what;
        }
    }
}

TEST_F(Rendering, AShadowFadesOutOverItsRadius) {
    auto view = add(*root_, {{30, 20}, {40, 40}}, red);
    view->layer().setShadow({10, {}, UIColor::whiteColor()});
    draw();
    int last = 256;
    for (CGFloat x = 70; x < 79; x += 0.5) {
        const int brightness = static_cast<int>(at(x, 40) & 255);
        EXPECT_LT(brightness, last) << x;
        last = brightness;
    }
    EXPECT_NEAR(static_cast<int>(at(70, 40) & 255), 128, 12) << "half of it at the edge";
    EXPECT_LE(last, 3);
    EXPECT_EQ(at(80.5, 40), 0xFF000000);
    EXPECT_EQ(at(30, 20), 0xFFFF0000);
}

TEST_F(Rendering, ViewsAreDrawnOnlyWhenTheirLookChanged) {
    auto painted = add<Painted>(*root_, {{10, 10}, {30, 20}});
    auto label = add<UILabel>(*root_, {{10, 40}, {80, 20}});
    label->setText("Text");
    EXPECT_TRUE(renderer_.needsDisplay());
    draw();
    EXPECT_FALSE(renderer_.needsDisplay());
    auto before = renderer_.statistics();
    EXPECT_EQ(before.bitmapsDrawn, 2U);
    draw();
    EXPECT_EQ(renderer_.statistics().listsBuilt, before.listsBuilt) << "a still picture is the kept list";

    const std::function<void()> harmless[] = {
        [&] {
            painted->setFrame({{12, 33}, {30, 20}});
        },
        [&] { painted->setAlpha(0.5); },
        [&] { label->setHidden(true); },
        [&] { label->setHidden(false); },
        [&] {
            root_->setBoundsOrigin({1, 1});
        },
        [&] { root_->sendSubviewToBack(*label); },
        [&] { label->removeFromSuperview(); },
        [&] { root_->addSubview(*label); },
    };
    for (const auto& change : harmless) {
        change();
        EXPECT_TRUE(renderer_.needsDisplay());
        draw();
        EXPECT_EQ(renderer_.statistics().bitmapsDrawn, before.bitmapsDrawn);
        EXPECT_FALSE(renderer_.needsDisplay());
    }
    const std::function<void()> visible[] = {
        [&] { painted->setNeedsDisplay(); },
        [&] { painted->setBackgroundColor(red); },
        [&] { label->setText("Other"); },
        [&] {
            painted->setFrame({{10, 10}, {31, 20}});
        },
        [&] { painted->layer().setCornerRadius(4); },
        [&] { painted->setTintColor(red); },
    };
    for (const auto& change : visible) {
        change();
        const auto drawn = renderer_.statistics().bitmapsDrawn;
        draw();
        EXPECT_EQ(renderer_.statistics().bitmapsDrawn, drawn + 1);
    }
    // What a view changes while it is drawn shows in the next picture.
    class Restless : public Painted {
    public:
        void drawRect(Canvas& canvas, const CGRect& bounds) override {
            Painted::drawRect(canvas, bounds);
            if (drawn == 1) setNeedsDisplay();
        }
    };
    auto restless = add<Restless>(*root_, {{0, 0}, {5, 5}});
    draw();
    EXPECT_TRUE(renderer_.needsDisplay());
    draw();
    EXPECT_EQ(restless->drawn, 2);
    EXPECT_FALSE(renderer_.needsDisplay());
}

TEST_F(Rendering, SlidingRedrawsNothingBecauseBitmapsAreMadeAhead) {
    VirtualClock clock;
    Clock::setCurrent(&clock);
    auto panel = add(*root_, {{-60, 0}, {60, 80}}, red);
    auto painted = add<Painted>(*panel, {{10, 10}, {40, 30}});
    auto far = add<Painted>(*root_, {{5000, 0}, {40, 30}});
    CountingCompositor compositor;
    renderer_.draw(compositor, 2);
    EXPECT_EQ(compositor.quads.size(), 0U);
    EXPECT_EQ(painted->drawn, 1);
    EXPECT_EQ(far->drawn, 0) << "too far away to be worth a bitmap";

    UIView::animateWithDuration(0.3, [&] { panel->setFrame({{0, 0}, {60, 80}}); });
    CGFloat last = -1000;
    std::size_t frames = 0;
    // The plain colour becomes a texture of one pixel when it is first seen.
    for (clock.advance(0.02); ViewAnimations::tick(clock.uptime()); clock.advance(0.02), ++frames) {
        renderer_.draw(compositor, 2);
        ASSERT_FALSE(compositor.quads.empty());
        EXPECT_GT(compositor.quads[0].destination.minX(), last);
        last = compositor.quads[0].destination.minX();
        if (compositor.quads.size() < 2) continue;
        EXPECT_EQ(compositor.quads[1].destination.minX(), last + 20);
        EXPECT_EQ(compositor.quads[1].destination.size, (CGSize{80, 60}));
    }
    EXPECT_GE(frames, 14U);
    EXPECT_EQ(painted->drawn, 1);
    EXPECT_EQ(compositor.texturesUpdated, 2U);
    renderer_.draw(compositor, 2);
    EXPECT_EQ(compositor.quads[1].destination, CGRectMake(20, 20, 80, 60));
    EXPECT_EQ(compositor.mistakes, 0U);
    Clock::setCurrent(nullptr);
}

TEST_F(Rendering, WorkAheadIsSpreadOverFramesWorkInSightIsNot) {
    std::vector<Ref<Painted>> ahead;
    for (int i = 0; i < 6; ++i) ahead.push_back(add<Painted>(*root_, {{-100, -60}, {140, 140}}));
    for (const auto& view : ahead) view->setFrame({{-145, 0}, {140, 140}});
    const auto drawn = [&] {
        int count = 0;
        for (const auto& view : ahead) count += view->drawn;
        return count;
    };
    draw();
    EXPECT_GE(drawn(), 1);
    EXPECT_LT(drawn(), 6);
    int frames = 0;
    while (renderer_.needsDisplay() && frames++ < 20) draw();
    EXPECT_EQ(drawn(), 6);
    for (const auto& view : ahead) {
        view->setNeedsDisplay();
        view->setFrame({{0, 0}, {140, 140}});
    }
    draw();
    EXPECT_EQ(drawn(), 12);
}

TEST_F(Rendering, TexturesLiveAsLongAsTheyAreNeeded) {
    CountingCompositor first, second;
    auto painted = add<Painted>(*root_, {{10, 10}, {30, 20}});
    auto rounded = add(*root_, {{50, 10}, {30, 20}}, red);
    rounded->layer().setCornerRadius(5);
    auto plain = add(*root_, {{50, 50}, {30, 20}}, blue);
    renderer_.draw(first, 2);
    EXPECT_EQ(first.texturesAlive(), 3U);
    painted->setFrame({{10, 10}, {35, 20}});
    renderer_.draw(first, 2);
    EXPECT_EQ(first.texturesAlive(), 3U);

    // A view that dies gives its texture back with the next picture, not when nobody draws.
    painted->removeFromSuperview();
    painted = nullptr;
    EXPECT_EQ(first.texturesAlive(), 3U);
    renderer_.draw(first, 2);
    EXPECT_EQ(first.texturesAlive(), 2U);
    renderer_.draw(first, 3);
    EXPECT_EQ(first.texturesAlive(), 2U);

    renderer_.releaseTextures(second);
    EXPECT_EQ(first.texturesAlive(), 2U);
    renderer_.releaseTextures(first);
    EXPECT_EQ(first.texturesAlive(), 0U);
    EXPECT_TRUE(renderer_.needsDisplay());
    rounded->removeFromSuperview();
    rounded = nullptr;
    renderer_.draw(second, 2);
    EXPECT_EQ(second.texturesAlive(), 1U);
    // Colours that change all the time do not pile up.
    for (int i = 0; i < 500; ++i) {
        plain->setBackgroundColor(UIColor::rgb(static_cast<std::uint32_t>(i)));
        renderer_.draw(second, 2);
    }
    EXPECT_LT(second.texturesAlive(), 100U);
    EXPECT_EQ(first.mistakes + second.mistakes, 0U);
}

/// Keeps what it is given.
class KeepingCompositor : public CountingCompositor {
public:
    using CountingCompositor::CountingCompositor;
    std::vector<std::uint32_t> pixels;
    int stride = 0, maximum = 4096;

    void updateTexture(TextureId texture, const PixelRect& region, const std::uint32_t* data, int dataStride) override {
        CountingCompositor::updateTexture(texture, region, data, dataStride);
        stride = dataStride;
        pixels.assign(data, data + static_cast<std::ptrdiff_t>(dataStride) * region.height);
    }
    int maximumTextureSize() const override { return maximum; }
};

/// Shows a picture of one colour.
class Film : public UIView {
public:
    std::vector<std::uint32_t> frame;
    int width = 0, asked = 0;

    void show(int w, int h, std::uint32_t pixel) {
        width = w;
        frame.assign(static_cast<std::size_t>(w) * static_cast<std::size_t>(h), pixel);
        setNeedsDisplay();
    }
    bool showsPixelBuffer() const override { return true; }
    PixelBuffer pixelBuffer() override {
        ++asked;
        if (frame.empty()) return {};
        return {width, static_cast<int>(frame.size()) / width, width, frame.data()};
    }
};

TEST_F(Rendering, APixelBufferIsPlacedRoundedAndUploadedOnlyWhenNew) {
    auto film = add<Film>(*root_, {{10, 10}, {40, 20}}, red);
    film->setContentMode(UIViewContentMode::ScaleAspectFit);
    draw();
    EXPECT_EQ(at(30, 20), 0xFFFF0000) << "nothing to show yet";
    film->show(50, 50, 0xFF00FF00);
    draw();
    EXPECT_EQ(at(30, 20), 0xFF00FF00);
    EXPECT_EQ(at(21, 11), 0xFF00FF00);
    EXPECT_EQ(at(15, 20), 0xFFFF0000) << "letter-boxed";
    draw();
    film->setAlpha(0.5);
    draw();
    EXPECT_EQ(film->asked, 2);
    film->setAlpha(1);

    film->layer().setCornerRadius(8);
    film->setBackgroundColor(UIColor::clearColor());
    film->setContentMode(UIViewContentMode::ScaleAspectFill);
    draw();
    EXPECT_EQ(at(10.5, 10.5), 0xFF000000);
    EXPECT_EQ(at(49, 29), 0xFF000000);
    EXPECT_EQ(at(30, 10.5), 0xFF00FF00);
    EXPECT_EQ(at(30, 9), 0xFF000000) << "clipped to the view";

    const int asked = film->asked;
    film->setFrame({{10, 10}, {20, 20}});
    draw();
    EXPECT_EQ(film->asked, asked + 1) << "the corners lie elsewhere";
    film->frame.clear();
    film->setNeedsDisplay();
    draw();
    EXPECT_EQ(at(20, 20), 0xFF000000);
    CountingCompositor counter;
    film->show(10, 10, 0xFFFFFFFF);
    renderer_.draw(counter, 2);
    film->removeFromSuperview();
    film = nullptr;
    renderer_.draw(counter, 2);
    EXPECT_EQ(counter.texturesAlive(), 0U);
    EXPECT_EQ(counter.mistakes, 0U);
}

TEST_F(Rendering, PixelsHaveTheAlphaConventionOfTheCompositor) {
    for (const UIColor& color : {UIColor::rgb(0xFF8000, 0.5F), UIColor::rgb(0x3060C0, 0.2F), UIColor::rgb(0x102030, 1),
                                 UIColor::rgb(0xFFFFFF, 0.02F)}) {
        for (const bool isPlain : {true, false}) {
            KeepingCompositor premultiplied, straight(Compositor::Alpha::Straight);
            const Ref<UIView> view = isPlain ? add(*root_, {{0, 0}, {20, 20}}, color)
                                             : Ref<UIView>(add<Painted>(*root_, {{0, 0}, {20, 20}}));
            if (!isPlain) static_cast<Painted&>(*view).color = color;
            LayerRenderer(*root_).draw(premultiplied, 2);
            view->setNeedsDisplay();
            LayerRenderer(*root_).draw(straight, 2);
            const auto byte = [](float value) { return static_cast<std::uint32_t>(std::lround(value * 255)); };
            const float a = color.alpha;
            EXPECT_TRUE(isNear(
                premultiplied.pixels[0],
                byte(a) << 24 | byte(color.red * a) << 16 | byte(color.green * a) << 8 | byte(color.blue * a), 1));
            // What was rounded while premultiplied is a few steps off where hardly anything is seen of it.
            EXPECT_TRUE(isNear(straight.pixels[0],
                               byte(a) << 24 | byte(color.red) << 16 | byte(color.green) << 8 | byte(color.blue),
                               a < 0.1F ? 30 : 3));
            view->removeFromSuperview();
        }
    }
}

TEST_F(Rendering, BitmapsBeyondTheLargestTextureAreCutDown) {
    KeepingCompositor compositor;
    compositor.maximum = 64;
    add<Painted>(*root_, {{0, 0}, {90, 30}});
    renderer_.draw(compositor, 2);
    ASSERT_EQ(compositor.quads.size(), 1U);
    const TexturedQuad& quad = compositor.quads[0];
    EXPECT_LE(quad.source.width, 64);
    EXPECT_NEAR(quad.destination.width(), 180, 6);
    EXPECT_NEAR(quad.destination.height(), 60, 6);
}

TEST(SoftwareCompositing, ScalesWithLinearFilteringWithinTheSource) {
    SoftwareCompositor picture(8, 4);
    const TextureId texture = picture.createTexture(4, 1);
    const std::uint32_t pixels[] = {0xFFFF0000, 0xFF000000, 0xFFFFFFFF, 0xFF00FF00};
    picture.updateTexture(texture, {0, 0, 4, 1}, pixels, 4);
    // The middle two texels over the whole width: nothing of the outer ones may show.
    picture.drawQuad({texture, {1, 0, 2, 1}, CGRectMake(0, 0, 8, 2), CGRectMake(0, 0, 8, 4), 1});
    EXPECT_EQ(picture.pixelAt(0, 0), 0xFF000000);
    EXPECT_EQ(picture.pixelAt(7, 1), 0xFFFFFFFF);
    const int left = static_cast<int>(picture.pixelAt(3, 0) & 255),
              right = static_cast<int>(picture.pixelAt(4, 0) & 255);
    EXPECT_GT(left, 64);
    EXPECT_GT(right, left);
    EXPECT_LT(right, 192);
    EXPECT_EQ(picture.pixelAt(0, 2), 0U);
    // Whatever is asked for, nothing outside target and texture is touched.
    const TexturedQuad wild[] = {
        {texture, {0, 0, 4, 1}, CGRectMake(-100, -100, 1000, 1000), CGRectMake(-5, -5, 300, 300), 0.5F},
        {texture, {2, 0, 4, 1}, CGRectMake(0, 0, 8, 4), CGRectMake(0, 0, 8, 4), 1},
        {texture, {0, 0, 4, 1}, CGRectMake(6, 3, 4, 1), CGRectMake(0, 0, 80, 40), 7},
        {99, {0, 0, 1, 1}, CGRectMake(0, 0, 8, 4), CGRectMake(0, 0, 8, 4), 1},
        {texture, {0, 0, 0, 0}, CGRectMake(0, 0, -8, 4), CGRectMake(0, 0, 8, 4), 1},
    };
    for (const TexturedQuad& quad : wild) picture.drawQuad(quad);
    picture.destroyTexture(texture);
    picture.destroyTexture(texture);
    EXPECT_EQ(picture.textureCount(), 0U);
}

TEST(Headless, DrawsThePanelOverTheGameAndWritesAPicture) {
    HeadlessHost host({50, 40}, 2);
    UIWindow& window = *UIApplication::sharedApplication().keyWindow();
    add(window, {{10, 10}, {20, 20}}, red.withAlpha(0.5F));
    host.setBackground([](SoftwareCompositor& picture) { picture.clear(0xFF0000FF); });
    EXPECT_TRUE(host.needsDisplay());
    host.update();
    host.drawFrame();
    EXPECT_FALSE(host.needsDisplay());
    EXPECT_EQ(host.picture().pixelAt(10, 10), 0xFF0000FF);
    EXPECT_TRUE(isNear(host.picture().pixelAt(40, 40), 0xFF80007F));

    const testing::TemporaryDirectory directory;
    const std::string file = directory.path("picture.png");
    ASSERT_TRUE(host.writePNG(file));
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_EQ(bytes.substr(0, 4), "\x89PNG");
    EXPECT_EQ(bytes.substr(16, 8), std::string("\0\0\0\x64\0\0\0\x50", 8)) << "100 x 80 pixels";
    std::string said;
    LogSink::set([&](LogLevel, std::string_view message) { said = message; });
    EXPECT_FALSE(host.writePNG(directory.path("missing/picture.png")));
    LogSink::set(nullptr);
    EXPECT_NE(said.find("missing/picture.png cannot be written"), said.npos) << said;

    host.setScreen({30, 60}, 1);
    host.update();
    host.drawFrame();
    EXPECT_EQ(host.picture().width(), 30);
    EXPECT_EQ(host.picture().height(), 60);
    EXPECT_TRUE(isNear(host.picture().pixelAt(20, 20), 0xFF80007F));
}

TEST_F(Rendering, TheMemoryOfABitmapIsGivenBackAtRest) {
    const auto memoryInUse = [] {
        const struct mallinfo2 heap = mallinfo2();
        return heap.uordblks + heap.hblkhd;
    };
    if (memoryInUse() == 0) GTEST_SKIP() << "the heap does not say what is in use";
    constexpr std::size_t bitmapLength = std::size_t{2000} * 2000 * 4;
    root_->setFrame({{}, {1000, 1000}});
    const auto view = add<Painted>(*root_, {{}, {1000, 1000}});
    CountingCompositor compositor;
    for (int times = 0; times < 2; ++times) {
        const std::size_t before = memoryInUse();
        view->setNeedsDisplay();
        renderer_.draw(compositor, 2);
        EXPECT_GE(memoryInUse(), before + bitmapLength) << "kept for what else is drawn";
        renderer_.draw(compositor, 2);
        EXPECT_LT(memoryInUse(), before + bitmapLength / 2);
    }
    EXPECT_EQ(view->drawn, 2);
}

}  // namespace
}  // namespace flarebox
