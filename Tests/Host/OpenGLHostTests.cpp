#include "OpenGLTesting.h"

#include <Foundation/LogSink.h>
#include <Host/OpenGL/OpenGLHost.h>
#include <Tests/Views/TabTesting.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIDevice.h>
#include <UIKit/UILabel.h>
#include <UIKit/UIScreen.h>
#include <UIKit/UIWindow.h>

#include <optional>

namespace flarebox::testing {
namespace {

/// What the kit logs while it lives.
class Log {
public:
    Log() {
        LogSink::set([this](LogLevel, std::string_view message) { messages.emplace_back(message); });
    }
    ~Log() { LogSink::set(nullptr); }
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;
    std::vector<std::string> messages;
};

void fill(const OffscreenTarget& target) {
    target.bind();
    glClearColor(0.2F, 0.4F, 0.6F, 1);
    glClear(GL_COLOR_BUFFER_BIT);
}
constexpr std::uint32_t filled = 0xFF336699;

class PictureTest : public OpenGLTest {};
INSTANTIATE_TEST_SUITE_P(OpenGL, PictureTest, ::testing::ValuesIn(glKinds), kindName);

TEST_P(PictureTest, IsTheSoftwareCompositors) {
    const OffscreenTarget target(SampleQuads::width, SampleQuads::height);
    OpenGLCompositor compositor(resolverOf(GetParam()));
    compositor.setTargetSize(target.width(), target.height());
    SampleQuads quads(compositor);
    for (int frame = 0; frame < 2; ++frame) {
        fill(target);
        quads.draw();
        EXPECT_LE(difference(target.pixels(), SampleQuads::expected(filled)), rounding);
    }
}

TEST_P(PictureTest, HasTheSameColoursInATargetThatEncodesThem) {
    const OffscreenTarget target(64, 4, OffscreenTarget::Encoding::SRGB);
    OpenGLCompositor compositor(resolverOf(GetParam()));
    compositor.setTargetSize(64, 4);
    std::vector<std::uint32_t> ramp;
    for (unsigned i = 0; i < 64; ++i) ramp.push_back(0xFF000000 | i * 4 << 16 | (255 - i * 4) << 8 | i);
    const TextureId texture = compositor.createTexture(64, 1);
    compositor.updateTexture(texture, {0, 0, 64, 1}, ramp.data(), 64);
    if (!isES()) glEnable(GL_FRAMEBUFFER_SRGB);
    compositor.beginFrame();
    compositor.drawQuad({texture, {0, 0, 64, 1}, CGRectMake(0, 0, 64, 4), CGRectMake(0, 0, 64, 4), 1});
    compositor.endFrame();
    const std::vector<std::uint32_t> shown = target.pixels();
    EXPECT_LE(difference(std::span(shown).first(64), ramp), 1);
}

TEST_P(PictureTest, WrongCallsDoNothing) {
    const OffscreenTarget target(SampleQuads::width, SampleQuads::height);
    OpenGLCompositor compositor(resolverOf(GetParam()));
    compositor.setTargetSize(target.width(), target.height());
    SampleQuads quads(compositor);
    const std::uint32_t pixels[4] = {};
    EXPECT_EQ(compositor.createTexture(0, 5), 0U);
    EXPECT_EQ(compositor.createTexture(5, 1 << 20), 0U);
    compositor.updateTexture(77, {0, 0, 1, 1}, pixels, 1);
    compositor.updateTexture(1, {15, 0, 2, 1}, pixels, 2);
    compositor.updateTexture(1, {0, 0, 2, 2}, pixels, 1);
    compositor.updateTexture(1, {0, 0, 2, 2}, nullptr, 2);
    compositor.destroyTexture(77);
    compositor.endFrame();
    compositor.drawQuad({1, {0, 0, 16, 16}, CGRectMake(0, 0, 16, 16), CGRectMake(0, 0, 16, 16), 1});
    fill(target);
    quads.draw();
    EXPECT_LE(difference(target.pixels(), SampleQuads::expected(filled)), rounding);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));

    // Nothing can be drawn into what is bound now.
    Log log;
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    quads.draw();
    quads.draw();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    ASSERT_EQ(log.messages.size(), 1U);
    EXPECT_NE(log.messages[0].find("framebuffer"), std::string::npos) << log.messages[0];
}

void APIENTRY failingShader(GLuint, GLenum, GLint* value) {
    *value = 0;
}

TEST(OpenGLFailureTest, IsToldOnceAndNothingIsDrawn) {
    const auto with = [](const char* name, void* function) -> OpenGLResolver {
        return [name, function](const char* wanted) {
            return wanted == std::string_view(name) ? function : OffscreenContext::resolve(wanted);
        };
    };
    const auto pretend = [](const char* version) { return resolverOf({"", {}, version}); };
    const struct {
        OpenGLResolver resolve;
        const char* reason;
        bool hasContext = true;
    } cases[] = {
        {nullptr, "glGetString"},
        {[](const char*) -> void* { return nullptr; }, "glGetString"},
        {OffscreenContext::resolve, "no context is current", false},
        {pretend("2.1 Mesa"), "\"2.1 Mesa\""},
        {pretend("3.2 (Core Profile)"), "OpenGL 3.3"},
        {pretend("OpenGL ES 2.0"), "OpenGL ES 3.0"},
        {pretend("nonsense"), "nonsense"},
        {with("glDrawArrays", nullptr), "glDrawArrays"},
        {with("glGetShaderiv", reinterpret_cast<void*>(&failingShader)), "shader"},
    };
    for (const auto& [resolve, reason, hasContext] : cases) {
        SCOPED_TRACE(reason);
        std::optional<OffscreenContext> context;
        if (hasContext) context.emplace(OffscreenContext::Kind::Desktop);
        if (context && !context->failure().empty()) GTEST_SKIP() << "no OpenGL: " << context->failure();
        Log log;
        OpenGLCompositor compositor(resolve);
        compositor.setTargetSize(SampleQuads::width, SampleQuads::height);
        for (int i = 0; i < 3; ++i) {
            EXPECT_GT(compositor.maximumTextureSize(), 0);
            EXPECT_EQ(compositor.createTexture(4, 4), 0U);
            SampleQuads(compositor).draw();
        }
        EXPECT_EQ(log.messages.size(), 1U);
        for (const std::string& message : log.messages) {
            EXPECT_NE(message.find(reason), std::string::npos) << message;
            EXPECT_NE(message.find("not shown"), std::string::npos) << message;
        }
    }
}

/// A host with a plain view and a text, which changes from frame to frame.
class HostTest : public OpenGLTest {
protected:
    static constexpr int width = 64, height = 48;

    void SetUp() override {
        OpenGLTest::SetUp();
        if (IsSkipped()) return;
        host_ = std::make_unique<OpenGLHost>(resolverOf(GetParam()), CGSize{width / 2, height / 2}, 2);
        label_ = make<UILabel>();
        label_->setFrame(CGRectMake(4, 2, 20, 16));
        UIApplication::sharedApplication().keyWindow()->addSubview(*label_);
        target_ = std::make_unique<OffscreenTarget>(width, height);
    }
    void TearDown() override {
        label_ = nullptr;
        host_ = nullptr;
        target_ = nullptr;
    }

    void change(int step) {
        label_->setText(std::to_string(step));
        label_->setBackgroundColor(UIColor::rgb(static_cast<std::uint32_t>(step * 997 & 0xFFFFFF)));
        label_->setFrame(CGRectMake(4 + step % 5, 2, 20 + step % 3, 16));
    }
    std::vector<std::uint32_t> picture() {
        host_->update();
        fill(*target_);
        host_->draw();
        return target_->pixels();
    }
    /// What the host has to show, drawn in memory.
    std::vector<std::uint32_t> expected() {
        SoftwareCompositor software(width, height);
        software.clear(filled);
        host_->update();
        host_->draw(software);
        host_->releaseTextures(software);
        return {software.pixels().begin(), software.pixels().end()};
    }

    std::unique_ptr<OpenGLHost> host_;
    std::unique_ptr<OffscreenTarget> target_;
    Ref<UILabel> label_;
};
INSTANTIATE_TEST_SUITE_P(OpenGL, HostTest, ::testing::ValuesIn(glKinds), kindName);

std::ptrdiff_t countNames(GLboolean(APIENTRY* exists)(GLuint)) {
    std::ptrdiff_t count = 0;
    for (GLuint name = 1; name < 20000; ++name) count += exists(name) == GL_TRUE;
    return count;
}

TEST_P(HostTest, ThousandsOfFramesLeaveNoObjectBehind) {
    // Those of the target, which the host knows nothing of, are no textures.
    for (int step = 0; step < 2000; ++step) {
        change(step);
        host_->update();
        host_->draw();
    }
    EXPECT_LE(countNames(glIsTexture), 70) << "of which 64 are colours";
    EXPECT_EQ(countNames(glIsBuffer), 1);
    EXPECT_EQ(countNames(glIsVertexArray), 1);
    EXPECT_EQ(countNames(glIsProgram), 1);
    EXPECT_EQ(countNames(glIsShader), 2) << "those of the program";
    EXPECT_LE(difference(picture(), expected()), rounding);
    host_ = nullptr;
    EXPECT_EQ(countNames(glIsTexture) + countNames(glIsBuffer) + countNames(glIsVertexArray) + countNames(glIsProgram),
              0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

int deletions = 0;
void APIENTRY countDeletions(GLsizei count, const GLuint* names) {
    deletions += count;
    glDeleteTextures(count, names);
}

TEST_P(HostTest, ALostContextIsForgottenAndEverythingIsMadeInTheNextOne) {
    host_ = nullptr;
    host_ = std::make_unique<OpenGLHost>(
        [](const char* name) {
            return name == std::string_view("glDeleteTextures") ? reinterpret_cast<void*>(&countDeletions)
                                                                : OffscreenContext::resolve(name);
        },
        CGSize{width / 2, height / 2}, 2);
    UIApplication::sharedApplication().keyWindow()->addSubview(*label_);
    change(7);
    const std::vector<std::uint32_t> wanted = expected();
    // From a context to one of the other kind, and back.
    for (const bool isOther : {false, true, false}) {
        target_ = nullptr;
        context_ = nullptr;
        deletions = 0;
        host_->contextLost();
        EXPECT_EQ(deletions, 0);
        context_ = std::make_unique<OffscreenContext>(isOther == isES() ? OffscreenContext::Kind::Desktop
                                                                        : OffscreenContext::Kind::ES);
        target_ = std::make_unique<OffscreenTarget>(width, height);
        EXPECT_LE(difference(picture(), wanted), rounding);
        EXPECT_LE(difference(picture(), wanted), rounding) << "and again from what it has";
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    target_ = nullptr;
    context_ = nullptr;
    deletions = 0;
    host_->contextLost();
    host_ = nullptr;
    EXPECT_EQ(deletions, 0);
}

TEST_P(HostTest, FollowsTheWindow) {
    const UIDevice& device = UIDevice::currentDevice();
    EXPECT_EQ(device.orientation(), UIDeviceOrientation::LandscapeLeft);
    change(1);
    host_->resize({height / 2, width / 2}, 2);
    EXPECT_EQ(device.orientation(), UIDeviceOrientation::Portrait);
    EXPECT_EQ(UIScreen::mainScreen().bounds(), CGRectMake(0, 0, 24, 32));
    host_->resize({height, width}, 1);
    EXPECT_EQ(device.orientation(), UIDeviceOrientation::PortraitUpsideDown);
    host_->resize({height, width}, 1);
    EXPECT_EQ(device.orientation(), UIDeviceOrientation::PortraitUpsideDown);
    // A larger target than the screen: it is drawn from the lower left corner on.
    host_->resize({width, height - 8}, 1);
    const std::vector<std::uint32_t> shown = picture();
    SoftwareCompositor software(width, height - 8);
    software.clear(filled);
    host_->draw(software);
    host_->releaseTextures(software);
    EXPECT_EQ(std::count(shown.begin(), shown.begin() + 8 * width, filled), 8 * width);
    EXPECT_LE(difference(std::span(shown).subspan(8 * width), software.pixels()), rounding);
}

/// The tab as it is, in memory and through OpenGL.
class TabPictureTest : public TabTest, public ::testing::WithParamInterface<GLKind> {
protected:
    void compare(const char* moment, OpenGLCompositor& compositor) {
        SCOPED_TRACE(moment);
        for (const CGFloat scale : {1.0, 2.0}) {
            host_->setScreen({667, 375}, scale);
            host_->update();
            SoftwareCompositor software(static_cast<int>(667 * scale), static_cast<int>(375 * scale));
            software.clear(filled);
            host_->draw(software);
            host_->releaseTextures(software);
            const OffscreenTarget target(software.width(), software.height());
            fill(target);
            compositor.setTargetSize(target.width(), target.height());
            host_->draw(compositor);
            host_->releaseTextures(compositor);
            EXPECT_LE(difference(target.pixels(), software.pixels()), rounding) << "scale " << scale;
            const auto untouched = std::ranges::count(software.pixels(), filled);
            EXPECT_LT(untouched, std::ssize(software.pixels())) << "something is shown";
        }
    }
};
INSTANTIATE_TEST_SUITE_P(OpenGL, TabPictureTest, ::testing::ValuesIn(glKinds), kindName);

TEST_P(TabPictureTest, IsTheSameInEveryState) {
    const OffscreenContext context(GetParam().kind);
    if (!context.failure().empty()) GTEST_SKIP() << "no OpenGL without a window here: " << context.failure();
    OpenGLCompositor compositor(resolverOf(GetParam()));
    showLoadedTab();
    compare("closed", compositor);
    tab_->open();
    pass(0.15);
    compare("sliding", compositor);
    pass(1);
    ASSERT_TRUE(settleIdle());
    compare("open", compositor);
    field("collectionView")->setAlpha(0.4);
    compare("faded", compositor);
    host_->scrolled({200, 340}, 37.5, 0);
    pass(0.05);
    compare("scrolling", compositor);
}

}  // namespace
}  // namespace flarebox::testing
