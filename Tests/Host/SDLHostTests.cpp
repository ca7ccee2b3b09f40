#include <Foundation/Clock.h>
#include <Foundation/MainQueue.h>
#include <Host/SDL/SDLHost.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIControl.h>
#include <UIKit/UIDevice.h>
#include <UIKit/UIFocusSystem.h>
#include <UIKit/UIScreen.h>
#include <UIKit/UIWindow.h>

#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace flarebox {
namespace {

/// A real window of SDL on its driver without a display.
class SDLTest : public ::testing::Test {
protected:
    void SetUp() override {
        SDL_SetHint(SDL_HINT_VIDEODRIVER, "dummy");
        ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0) << SDL_GetError();
        window_ = SDL_CreateWindow("test", 0, 0, 400, 300, SDL_WINDOW_RESIZABLE);
        renderer_ = SDL_CreateRenderer(window_, -1, SDL_RENDERER_SOFTWARE | SDL_RENDERER_TARGETTEXTURE);
        ASSERT_NE(renderer_, nullptr) << SDL_GetError();
    }
    void TearDown() override {
        SDL_DestroyRenderer(renderer_);
        SDL_DestroyWindow(window_);
        SDL_Quit();
    }

    void clear(Uint8 red, Uint8 green, Uint8 blue) {
        SDL_SetRenderDrawColor(renderer_, red, green, blue, 255);
        SDL_RenderClear(renderer_);
    }
    /// 0xRRGGBB
    Uint32 pixel(int x, int y) {
        Uint32 value = 0;
        const SDL_Rect rect{x, y, 1, 1};
        SDL_RenderReadPixels(renderer_, &rect, SDL_PIXELFORMAT_ARGB8888, &value, 4);
        return value & 0xFFFFFF;
    }

    SDL_Window* window_ = nullptr;
    SDL_Renderer* renderer_ = nullptr;
};

bool isNear(Uint32 a, Uint32 b) {
    for (int shift : {0, 8, 16}) {
        if (std::abs(static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255)) > 3) return false;
    }
    return true;
}

TEST_F(SDLTest, WithoutWindowOrRendererNothingIsShownAndNothingBreaks) {
    for (SDL_Renderer* renderer : {renderer_, static_cast<SDL_Renderer*>(nullptr)}) {
        SDLHost host(nullptr, renderer);
        SDL_Event click{};
        click.type = SDL_MOUSEBUTTONDOWN;
        click.button.button = SDL_BUTTON_LEFT;
        EXPECT_EQ(host.handleEvent(click), InputResult::Ignored);
        host.update();
        host.draw();
    }
}

TEST_F(SDLTest, CompositorBlendsClipsAndScales) {
    SDLCompositor compositor(renderer_);
    EXPECT_EQ(compositor.alphaConvention(), Compositor::Alpha::Straight);
    const TextureId texture = compositor.createTexture(4, 4);
    ASSERT_NE(texture, 0U);
    std::vector<std::uint32_t> pixels(16, 0xFFFF0000);
    for (int i = 8; i < 16; ++i) pixels[static_cast<std::size_t>(i)] = 0x80FF0000;
    compositor.updateTexture(texture, {0, 0, 4, 4}, pixels.data(), 4);

    clear(0, 0, 255);
    compositor.beginFrame();
    compositor.drawQuad({texture, {0, 0, 4, 2}, CGRectMake(10, 10, 40, 20), CGRectMake(0, 0, 400, 300), 1});
    compositor.drawQuad({texture, {0, 2, 4, 2}, CGRectMake(60, 10, 40, 20), CGRectMake(0, 0, 400, 300), 1});
    compositor.drawQuad({texture, {0, 0, 4, 2}, CGRectMake(110, 10, 40, 20), CGRectMake(0, 0, 400, 300), 0.5F});
    compositor.drawQuad({texture, {0, 0, 4, 2}, CGRectMake(160, 10, 40, 20), CGRectMake(170, 15, 10, 10), 1});
    compositor.drawQuad({999, {0, 0, 4, 2}, CGRectMake(210, 10, 40, 20), CGRectMake(0, 0, 400, 300), 1});
    compositor.endFrame();

    EXPECT_TRUE(isNear(pixel(30, 20), 0xFF0000));
    EXPECT_TRUE(isNear(pixel(80, 20), 0x80007F)) << std::hex << pixel(80, 20);
    EXPECT_TRUE(isNear(pixel(130, 20), 0x80007F)) << std::hex << pixel(130, 20);
    EXPECT_TRUE(isNear(pixel(175, 20), 0xFF0000));
    for (const auto& [x, y] : {std::pair{5, 20}, {165, 20}, {185, 20}, {175, 12}, {175, 27}, {230, 20}}) {
        EXPECT_EQ(pixel(x, y), 0x0000FFU) << x << " " << y;
    }

    compositor.destroyTexture(texture);
    compositor.destroyTexture(texture);
    EXPECT_EQ(compositor.createTexture(2, 2), texture) << "the place of a destroyed texture is used again";
    EXPECT_EQ(compositor.createTexture(0, 2), 0U);
}

struct RendererState {
    SDL_Rect viewport{}, clip{};
    SDL_bool isClipped = SDL_FALSE;
    float scaleX = 0, scaleY = 0;
    int logicalWidth = 0, logicalHeight = 0;
    SDL_BlendMode mode = SDL_BLENDMODE_INVALID;
    Uint8 color[4] = {};
    SDL_Texture* target = nullptr;

    explicit RendererState(SDL_Renderer* renderer) {
        SDL_RenderGetViewport(renderer, &viewport);
        SDL_RenderGetClipRect(renderer, &clip);
        isClipped = SDL_RenderIsClipEnabled(renderer);
        SDL_RenderGetScale(renderer, &scaleX, &scaleY);
        SDL_RenderGetLogicalSize(renderer, &logicalWidth, &logicalHeight);
        SDL_GetRenderDrawBlendMode(renderer, &mode);
        SDL_GetRenderDrawColor(renderer, &color[0], &color[1], &color[2], &color[3]);
        target = SDL_GetRenderTarget(renderer);
    }
    void expectSame(const RendererState& other) const {
        EXPECT_TRUE(SDL_RectEquals(&viewport, &other.viewport));
        EXPECT_TRUE(SDL_RectEquals(&clip, &other.clip));
        EXPECT_EQ(isClipped, other.isClipped);
        EXPECT_EQ(scaleX, other.scaleX);
        EXPECT_EQ(scaleY, other.scaleY);
        EXPECT_EQ(logicalWidth, other.logicalWidth);
        EXPECT_EQ(logicalHeight, other.logicalHeight);
        EXPECT_EQ(mode, other.mode);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(color[i], other.color[i]);
        EXPECT_EQ(target, other.target);
    }
};

TEST_F(SDLTest, CompositorLeavesTheGamesStateAlone) {
    SDLCompositor compositor(renderer_);
    const TextureId texture = compositor.createTexture(1, 1);
    const std::uint32_t white = 0xFFFFFFFF;
    compositor.updateTexture(texture, {0, 0, 1, 1}, &white, 1);
    SDL_Texture* target = SDL_CreateTexture(renderer_, SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_TARGET, 64, 64);
    const SDL_Rect viewport{7, 5, 101, 77}, clip{3, 4, 31, 21};
    const std::vector<std::pair<const char*, std::function<void()>>> games = {
        {"nothing set", [] {}},
        {"viewport and clip",
         [&] { SDL_RenderSetViewport(renderer_, &viewport), SDL_RenderSetClipRect(renderer_, &clip); }},
        {"scale", [&] { SDL_RenderSetScale(renderer_, 1.7F, 1.3F), SDL_RenderSetClipRect(renderer_, &clip); }},
        {"logical size", [&] { SDL_RenderSetLogicalSize(renderer_, 320, 200); }},
        {"logical size and viewport",
         [&] { SDL_RenderSetLogicalSize(renderer_, 320, 200), SDL_RenderSetViewport(renderer_, &viewport); }},
        {"target",
         [&] {
             SDL_SetRenderTarget(renderer_, target);
             SDL_RenderSetClipRect(renderer_, &clip);
             SDL_RenderSetScale(renderer_, 2, 2);
         }},
    };
    for (const auto& [name, set] : games) {
        SCOPED_TRACE(name);
        SDL_SetRenderTarget(renderer_, nullptr);
        SDL_RenderSetLogicalSize(renderer_, 0, 0);
        SDL_RenderSetScale(renderer_, 1, 1);
        SDL_RenderSetViewport(renderer_, nullptr);
        SDL_RenderSetClipRect(renderer_, nullptr);
        clear(0, 0, 0);
        set();
        SDL_SetRenderDrawBlendMode(renderer_, SDL_BLENDMODE_ADD);
        SDL_SetRenderDrawColor(renderer_, 1, 2, 3, 4);
        const RendererState before(renderer_);

        compositor.beginFrame();
        compositor.drawQuad({texture, {0, 0, 1, 1}, CGRectMake(350, 250, 20, 20), CGRectMake(352, 252, 10, 10), 0.5F});
        compositor.drawQuad({texture, {0, 0, 1, 1}, CGRectMake(390, 290, 20, 20), CGRectMake(0, 0, 400, 300), 1});
        compositor.endFrame();

        RendererState(renderer_).expectSame(before);
        SDL_SetRenderTarget(renderer_, nullptr);
        SDL_RenderSetLogicalSize(renderer_, 0, 0);
        SDL_RenderSetScale(renderer_, 1, 1);
        SDL_RenderSetViewport(renderer_, nullptr);
        EXPECT_EQ(pixel(395, 295), 0xFFFFFFU) << "drawn in pixels of the window whatever the game has set";
    }
    SDL_DestroyTexture(target);
}

/// A control in the window, and events as SDL makes them.
class SDLInputTest : public SDLTest {
protected:
    void SetUp() override {
        SDLTest::SetUp();
        Clock::setCurrent(&clock_);
        host_ = std::make_unique<SDLHost>(window_, renderer_);
        control_ = make<UIControl>();
        control_->setFrame(CGRectMake(0, 0, 100, 300));
        control_->setBackgroundColor(UIColor::rgb(0x00FF00));
        control_->addAction([this] { ++presses_; }, UIControlEvents::TouchUpInside);
        UIApplication::sharedApplication().keyWindow()->addSubview(*control_);
        host_->update();
    }
    void TearDown() override {
        control_ = nullptr;
        host_ = nullptr;
        Clock::setCurrent(nullptr);
        SDLTest::TearDown();
    }

    SDL_Event event(Uint32 type) const {
        SDL_Event event{};
        event.type = type;
        return event;
    }
    InputResult button(Uint32 type, int x, int y, Uint8 button = SDL_BUTTON_LEFT, Uint32 which = 0) {
        SDL_Event e = event(type);
        e.button.windowID = SDL_GetWindowID(window_);
        e.button.button = button;
        e.button.which = which;
        e.button.x = x;
        e.button.y = y;
        return host_->handleEvent(e);
    }
    InputResult motion(int x, int y) {
        SDL_Event e = event(SDL_MOUSEMOTION);
        e.motion.windowID = SDL_GetWindowID(window_);
        e.motion.x = x;
        e.motion.y = y;
        return host_->handleEvent(e);
    }
    InputResult finger(Uint32 type, SDL_FingerID finger, float x, float y) {
        SDL_Event e = event(type);
        e.tfinger.touchId = 1;
        e.tfinger.fingerId = finger;
        e.tfinger.x = x;
        e.tfinger.y = y;
        return host_->handleEvent(e);
    }
    InputResult pad(Uint32 type, SDL_GameControllerButton button, SDL_JoystickID which = 0) {
        SDL_Event e = event(type);
        e.cbutton.which = which;
        e.cbutton.button = static_cast<Uint8>(button);
        return host_->handleEvent(e);
    }
    InputResult stick(SDL_GameControllerAxis axis, double deflection, SDL_JoystickID which = 0) {
        SDL_Event e = event(SDL_CONTROLLERAXISMOTION);
        e.caxis.which = which;
        e.caxis.axis = static_cast<Uint8>(axis);
        e.caxis.value = static_cast<Sint16>(deflection * 32767);
        return host_->handleEvent(e);
    }
    void unplug(SDL_JoystickID which) {
        SDL_Event e = event(SDL_CONTROLLERDEVICEREMOVED);
        e.cdevice.which = which;
        EXPECT_EQ(host_->handleEvent(e), InputResult::Ignored) << "the game closes it";
    }
    void windowEvent(Uint8 kind) {
        SDL_Event e = event(SDL_WINDOWEVENT);
        e.window.windowID = SDL_GetWindowID(window_);
        e.window.event = kind;
        EXPECT_EQ(host_->handleEvent(e), InputResult::Ignored) << "the game needs window events too";
    }

    VirtualClock clock_;
    std::unique_ptr<SDLHost> host_;
    Ref<UIControl> control_;
    int presses_ = 0;
};

constexpr auto consumed = InputResult::Consumed, ignored = InputResult::Ignored;

TEST_F(SDLInputTest, PanelTakesItsClicksAndLeavesTheOthers) {
    EXPECT_EQ(button(SDL_MOUSEBUTTONDOWN, 50, 50), consumed);
    EXPECT_EQ(motion(60, 50), consumed);
    EXPECT_EQ(button(SDL_MOUSEBUTTONUP, 60, 50), consumed);
    EXPECT_EQ(presses_, 1);
    EXPECT_EQ(button(SDL_MOUSEBUTTONDOWN, 200, 50), ignored);
    EXPECT_EQ(motion(50, 50), ignored) << "a drag that began in the game stays the game's";
    EXPECT_EQ(button(SDL_MOUSEBUTTONUP, 50, 50), ignored);
    EXPECT_EQ(presses_, 1);

    EXPECT_EQ(motion(50, 60), consumed);
    EXPECT_TRUE(control_->isHovered());
    EXPECT_EQ(button(SDL_MOUSEBUTTONDOWN, 50, 60, SDL_BUTTON_RIGHT), consumed);
    EXPECT_EQ(button(SDL_MOUSEBUTTONUP, 250, 60, SDL_BUTTON_RIGHT), consumed);
    EXPECT_EQ(button(SDL_MOUSEBUTTONDOWN, 250, 60, SDL_BUTTON_RIGHT), ignored);
    EXPECT_EQ(button(SDL_MOUSEBUTTONUP, 50, 60, SDL_BUTTON_RIGHT), ignored);
    motion(50, 60);
    windowEvent(SDL_WINDOWEVENT_LEAVE);
    EXPECT_FALSE(control_->isHovered());
}

TEST_F(SDLInputTest, OtherWindowsAreNotThePanels) {
    SDL_Event e = event(SDL_MOUSEBUTTONDOWN);
    e.button.windowID = SDL_GetWindowID(window_) + 1;
    e.button.button = SDL_BUTTON_LEFT;
    e.button.x = e.button.y = 50;
    EXPECT_EQ(host_->handleEvent(e), ignored);
    EXPECT_FALSE(control_->isHighlighted());
}

TEST_F(SDLInputTest, LosingTheFocusEndsATouch) {
    EXPECT_EQ(button(SDL_MOUSEBUTTONDOWN, 50, 50), consumed);
    EXPECT_TRUE(control_->isHighlighted());
    windowEvent(SDL_WINDOWEVENT_FOCUS_LOST);
    EXPECT_FALSE(control_->isHighlighted());
    EXPECT_EQ(button(SDL_MOUSEBUTTONUP, 50, 50), ignored);
    EXPECT_EQ(presses_, 0);
}

TEST_F(SDLInputTest, HeldKeysStayWithWhoGotThePress) {
    class Recorder : public UIViewController {
    public:
        bool keyDown(std::string_view name) override {
            keys.append(name).append(" ");
            return true;
        }
        std::string keys;
    };
    const auto key = [this](Uint32 type, SDL_Scancode code, bool isRepeat = false) {
        SDL_Event e = event(type);
        e.key.windowID = SDL_GetWindowID(window_);
        e.key.keysym.scancode = code;
        e.key.keysym.sym = SDL_GetKeyFromScancode(code);
        e.key.repeat = isRepeat;
        return host_->handleEvent(e);
    };
    UIViewController& root = *UIApplication::sharedApplication().keyWindow()->rootViewController();
    const auto shown = make<Recorder>();
    EXPECT_EQ(key(SDL_KEYDOWN, SDL_SCANCODE_W), ignored);
    root.presentViewController(shown, false, nullptr);
    EXPECT_EQ(key(SDL_KEYDOWN, SDL_SCANCODE_W, true), ignored) << "the game's";
    for (const SDL_Scancode code : {SDL_SCANCODE_SPACE, SDL_SCANCODE_LEFT}) {
        EXPECT_EQ(key(SDL_KEYDOWN, code), consumed);
        EXPECT_EQ(key(SDL_KEYDOWN, code, true), consumed);
    }
    EXPECT_EQ(shown->keys, "space left left ");
    root.dismissViewController(false, nullptr);
    EXPECT_EQ(key(SDL_KEYDOWN, SDL_SCANCODE_SPACE, true), consumed) << "it is still held";
    EXPECT_EQ(key(SDL_KEYUP, SDL_SCANCODE_SPACE), consumed);
    EXPECT_EQ(key(SDL_KEYUP, SDL_SCANCODE_W), ignored);
}

TEST_F(SDLInputTest, ControllersAreTheGamesUntilThePanelHasTheFocus) {
    const auto other = make<UIControl>();
    other->setFrame(CGRectMake(200, 0, 100, 300));
    int otherPresses = 0;
    other->addAction([&] { ++otherPresses; }, UIControlEvents::TouchUpInside);
    UIApplication::sharedApplication().keyWindow()->addSubview(*other);

    EXPECT_EQ(pad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_A), ignored);
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, 1), ignored);
    EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, 0), ignored);
    host_->takeFocus();
    EXPECT_EQ(pad(SDL_CONTROLLERBUTTONUP, SDL_CONTROLLER_BUTTON_A), ignored) << "went down in the game";
    EXPECT_EQ(pad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_A), consumed);
    EXPECT_EQ(presses_, 1);
    EXPECT_EQ(pad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_START), ignored);
    // A stick that trembles beyond its middle is pressed once.
    for (const double deflection : {0.3, 0.7, 0.9, 0.5, 0.9})
        EXPECT_EQ(stick(SDL_CONTROLLER_AXIS_LEFTX, deflection), consumed);
    pad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_A);
    EXPECT_EQ(otherPresses, 1);
    stick(SDL_CONTROLLER_AXIS_LEFTX, 0);
    stick(SDL_CONTROLLER_AXIS_LEFTX, -1);
    pad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_A);
    EXPECT_EQ(presses_, 2);
    host_->giveBackFocus();
    EXPECT_EQ(pad(SDL_CONTROLLERBUTTONUP, SDL_CONTROLLER_BUTTON_A), consumed) << "went down in the panel";
    EXPECT_EQ(pad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_DPAD_LEFT), ignored);
    other->removeFromSuperview();
}

TEST_F(SDLInputTest, AHeldDirectionGoesOnUntilItIsLetGo) {
    UIWindow& window = *UIApplication::sharedApplication().keyWindow();
    std::vector<Ref<UIControl>> row{control_};
    for (int i = 1; i < 9; ++i) {
        row.push_back(make<UIControl>());
        row.back()->setFrame(CGRectMake(100 + 20 * i, 0, 20, 300));
        row.back()->addAction([] {}, UIControlEvents::TouchUpInside);
        window.addSubview(*row.back());
    }
    const auto place = [&] {
        const auto at =
            std::ranges::find_if(row, [&](auto& each) { return each.get() == window.focusSystem().focusedView(); });
        return at - row.begin();
    };
    const auto wait = [this](double seconds) { MainQueue::advance(clock_, seconds); };
    host_->takeFocus();

    pad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_DPAD_RIGHT);
    wait(0.4);
    EXPECT_EQ(place(), 1) << "a short press is one";
    wait(0.35);
    EXPECT_EQ(place(), 4);
    pad(SDL_CONTROLLERBUTTONUP, SDL_CONTROLLER_BUTTON_DPAD_RIGHT);
    wait(1);
    EXPECT_EQ(place(), 4);

    // From one side to the other without a report of the middle.
    stick(SDL_CONTROLLER_AXIS_LEFTX, 1);
    EXPECT_EQ(place(), 5);
    stick(SDL_CONTROLLER_AXIS_LEFTX, -1);
    wait(0.5);
    EXPECT_EQ(place(), 3);
    windowEvent(SDL_WINDOWEVENT_FOCUS_LOST);
    wait(1);
    EXPECT_EQ(place(), 3);
    stick(SDL_CONTROLLER_AXIS_LEFTX, 0);

    // One that lies on the table and trembles.
    pad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_DPAD_LEFT);
    stick(SDL_CONTROLLER_AXIS_LEFTX, 0.01, 1);
    pad(SDL_CONTROLLERBUTTONUP, SDL_CONTROLLER_BUTTON_DPAD_LEFT, 1);
    wait(0.5);
    EXPECT_EQ(place(), 1);
    unplug(0);
    wait(1);
    EXPECT_EQ(place(), 1) << "SDL need not tell of the button of one that went";

    pad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_DPAD_RIGHT);
    button(SDL_MOUSEBUTTONDOWN, 350, 10);
    wait(1);
    EXPECT_FALSE(host_->showsFocusRing()) << "whoever holds the mouse goes on with it";
    pad(SDL_CONTROLLERBUTTONUP, SDL_CONTROLLER_BUTTON_DPAD_RIGHT);
    button(SDL_MOUSEBUTTONUP, 350, 10);
    host_->takeFocus();

    pad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_DPAD_RIGHT);
    host_->giveBackFocus();
    wait(1);
    host_->takeFocus();
    wait(1);
    EXPECT_EQ(window.focusSystem().focusedView(), nullptr) << "what the game got is not the panel's again";
    pad(SDL_CONTROLLERBUTTONUP, SDL_CONTROLLER_BUTTON_DPAD_RIGHT);
    pad(SDL_CONTROLLERBUTTONDOWN, SDL_CONTROLLER_BUTTON_DPAD_LEFT);
    host_.reset();
    wait(1);
}

TEST_F(SDLInputTest, FingersTouchOnceEvenWhenSDLReportsThemAsAMouseToo) {
    EXPECT_EQ(finger(SDL_FINGERDOWN, 7, 0.1F, 0.5F), consumed);
    EXPECT_EQ(finger(SDL_FINGERDOWN, 8, 0.9F, 0.5F), ignored);
    EXPECT_EQ(finger(SDL_FINGERUP, 8, 0.9F, 0.5F), ignored);
    EXPECT_EQ(finger(SDL_FINGERUP, 7, 0.1F, 0.5F), consumed);
    EXPECT_EQ(presses_, 1);

    EXPECT_EQ(button(SDL_MOUSEBUTTONDOWN, 40, 150, SDL_BUTTON_LEFT, SDL_TOUCH_MOUSEID), consumed);
    EXPECT_EQ(finger(SDL_FINGERDOWN, 9, 0.1F, 0.5F), consumed);
    EXPECT_EQ(button(SDL_MOUSEBUTTONUP, 40, 150, SDL_BUTTON_LEFT, SDL_TOUCH_MOUSEID), consumed);
    EXPECT_EQ(finger(SDL_FINGERUP, 9, 0.1F, 0.5F), consumed);
    EXPECT_EQ(presses_, 2);
}

TEST_F(SDLInputTest, LogicalSizeOfTheGameIsTakenBack) {
    SDL_RenderSetLogicalSize(renderer_, 200, 150);
    EXPECT_EQ(button(SDL_MOUSEBUTTONDOWN, 45, 75), consumed);
    button(SDL_MOUSEBUTTONUP, 45, 75);
    EXPECT_EQ(button(SDL_MOUSEBUTTONDOWN, 55, 75), ignored);
    button(SDL_MOUSEBUTTONUP, 55, 75);
    EXPECT_EQ(presses_, 1);
}

TEST_F(SDLInputTest, ScreenFollowsTheWindow) {
    EXPECT_EQ(UIScreen::mainScreen().bounds(), CGRectMake(0, 0, 400, 300));
    EXPECT_EQ(UIScreen::mainScreen().scale(), 1);
    EXPECT_EQ(UIDevice::currentDevice().orientation(), UIDeviceOrientation::LandscapeLeft);
    SDL_SetWindowSize(window_, 300, 500);
    windowEvent(SDL_WINDOWEVENT_SIZE_CHANGED);
    EXPECT_EQ(UIScreen::mainScreen().bounds(), CGRectMake(0, 0, 300, 500));
    EXPECT_EQ(UIDevice::currentDevice().orientation(), UIDeviceOrientation::Portrait);
    windowEvent(SDL_WINDOWEVENT_SIZE_CHANGED);
    EXPECT_EQ(UIDevice::currentDevice().orientation(), UIDeviceOrientation::Portrait);
    SDL_SetWindowSize(window_, 360, 600);
    windowEvent(SDL_WINDOWEVENT_SIZE_CHANGED);
    EXPECT_EQ(UIDevice::currentDevice().orientation(), UIDeviceOrientation::PortraitUpsideDown);
}

TEST_F(SDLInputTest, DrawsOverTheGameAndAgainAfterTheDeviceWasLost) {
    for (int i = 0; i < 3; ++i) {
        clear(0, 0, 255);
        host_->update();
        host_->draw();
        EXPECT_TRUE(isNear(pixel(50, 150), 0x00FF00)) << std::hex << pixel(50, 150);
        EXPECT_EQ(pixel(200, 150), 0x0000FFU);
        if (i == 1) host_->handleEvent(event(SDL_RENDER_DEVICE_RESET));
    }
}

}  // namespace
}  // namespace flarebox
