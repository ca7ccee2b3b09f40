#include "Scene/SDLPainter.h"
#include "Screen.h"

#include <Foundation/Clock.h>
#include <Host/SDL/SDLHost.h>

#include <SDL.h>
#include <SDL_image.h>

#include <map>
#include <utility>

namespace flarebox::hostgame {
namespace {

struct Destroy {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
    void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
    void operator()(SDL_GameController* controller) const { SDL_GameControllerClose(controller); }
};
template <class T>
using Owned = std::unique_ptr<T, Destroy>;

struct Video {
    bool isReady = SDL_Init(SDL_INIT_VIDEO) == 0;
    // Without controllers there are still the keys.
    Video() { SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER); }
    ~Video() { SDL_Quit(); }
    Video(const Video&) = delete;
    Video& operator=(const Video&) = delete;
};

Owned<SDL_Renderer> makeRenderer(SDL_Window& window) {
    Owned<SDL_Renderer> renderer(SDL_CreateRenderer(&window, -1, SDL_RENDERER_ACCELERATED | SDL_RENDERER_PRESENTVSYNC));
    if (!renderer) renderer.reset(SDL_CreateRenderer(&window, -1, SDL_RENDERER_SOFTWARE));
    return renderer;
}

class WindowScreen : public Screen {
public:
    bool open(CGSize size, std::string& error) {
        if (video_.isReady) {
            window_.reset(SDL_CreateWindow("Night Glider", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                           static_cast<int>(size.width), static_cast<int>(size.height),
                                           SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI));
        }
        if (window_) renderer_ = makeRenderer(*window_);
        if (renderer_)
            host_ = std::make_unique<SDLHost>(window_.get(), renderer_.get());
        else
            error = std::string("cannot open a window: ") + SDL_GetError() + "; --headless needs none";
        return renderer_ != nullptr;
    }

    UIHost& host() override { return *host_; }
    bool isWatched() const override { return true; }

    CGSize size() const override {
        int width = 0, height = 0;
        SDL_GetWindowSize(window_.get(), &width, &height);
        return {static_cast<CGFloat>(width), static_cast<CGFloat>(height)};
    }

    void resize(CGSize size) override {
        SDL_SetWindowSize(window_.get(), static_cast<int>(size.width), static_cast<int>(size.height));
    }

    bool handleInput(World& world) override {
        SDL_Event event;
        while (SDL_PollEvent(&event)) {
            if (event.type == SDL_QUIT) return false;
            notice(event);
            if (host_->handleEvent(event) == InputResult::Ignored) play(world, event);
        }
        return true;
    }

    double draw(const World& world) override {
        const double panel = drawFrame(world);
        SDL_RenderPresent(renderer_.get());
        return panel;
    }

    std::optional<CGPoint> pointer() const override { return pointer_; }
    bool takeDeveloperKey() override { return std::exchange(developerKey_, false); }
    bool takePanelKey() override { return std::exchange(panelKey_, false); }

    void drawPanel() override {}

    bool savePicture(const World& world, const std::string& path) override {
        drawFrame(world);
        int width = 0, height = 0;
        SDL_GetRendererOutputSize(renderer_.get(), &width, &height);
        const Owned<SDL_Surface> picture(SDL_CreateRGBSurfaceWithFormat(0, width, height, 24, SDL_PIXELFORMAT_RGB24));
        if (!picture) return false;
        const bool isRead =
            SDL_RenderReadPixels(renderer_.get(), nullptr, SDL_PIXELFORMAT_RGB24, picture->pixels, picture->pitch) == 0;
        SDL_RenderPresent(renderer_.get());
        return isRead && IMG_SavePNG(picture.get(), path.c_str()) == 0;
    }

private:
    /// Answers the seconds that the panel took.
    double drawFrame(const World& world) {
        paint(pictureOf(world, size()), *renderer_);
        const double start = Clock::real().uptime();
        host_->draw();
        return Clock::real().uptime() - start;
    }

    void notice(const SDL_Event& event) {
        if (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_F12 && event.key.repeat == 0)
            developerKey_ = true;
        if (event.type == SDL_CONTROLLERDEVICEADDED) open(event.cdevice.which);
        if (event.type == SDL_CONTROLLERDEVICEREMOVED) controllers_.erase(event.cdevice.which);
        if (event.type == SDL_MOUSEMOTION)
            pointer_ = {static_cast<CGFloat>(event.motion.x), static_cast<CGFloat>(event.motion.y)};
        if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_LEAVE) pointer_.reset();
    }

    /// `device` is its place among the devices; later events tell its identifier.
    void open(int device) {
        Owned<SDL_GameController> controller(SDL_GameControllerOpen(device));
        if (!controller) return;
        const SDL_JoystickID id = SDL_JoystickInstanceID(SDL_GameControllerGetJoystick(controller.get()));
        // Told of again, it is the one that is open, and only counted once more.
        controllers_[id] = std::move(controller);
    }

    static bool isForPanel(const SDL_Event& event) {
        if (event.type == SDL_CONTROLLERBUTTONDOWN) return event.cbutton.button == SDL_CONTROLLER_BUTTON_START;
        // With Alt or Ctrl it is the desktop's.
        constexpr int others = KMOD_ALT | KMOD_CTRL | KMOD_GUI;
        return event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_TAB && event.key.repeat == 0 &&
               (event.key.keysym.mod & others) == 0;
    }

    void play(World& world, const SDL_Event& event) {
        if (isForPanel(event)) panelKey_ = true;
        switch (event.type) {
            case SDL_MOUSEMOTION:
                world.steerTowards(event.motion.y / size().height * 100);
                break;
            case SDL_MOUSEBUTTONDOWN:
                world.fire();
                break;
            case SDL_KEYDOWN:
            case SDL_KEYUP:
                playKey(world, event.key);
                break;
            default:
                break;
        }
    }

    static void playKey(World& world, const SDL_KeyboardEvent& key) {
        const bool isDown = key.type == SDL_KEYDOWN;
        switch (key.keysym.sym) {
            case SDLK_UP:
                world.steer(isDown ? -1 : 0);
                break;
            case SDLK_DOWN:
                world.steer(isDown ? 1 : 0);
                break;
            case SDLK_SPACE:
                if (isDown && key.repeat == 0) world.fire();
                break;
            default:
                break;
        }
    }

    // Destroyed from the last to the first: the kit's adapter, then what it draws with.
    Video video_;
    Owned<SDL_Window> window_;
    Owned<SDL_Renderer> renderer_;
    std::unique_ptr<SDLHost> host_;
    std::map<SDL_JoystickID, Owned<SDL_GameController>> controllers_;
    std::optional<CGPoint> pointer_;
    bool developerKey_ = false, panelKey_ = false;
};

}  // namespace

std::unique_ptr<Screen> makeWindowScreen(const Options& options, std::string& error) {
    auto screen = std::make_unique<WindowScreen>();
    if (!screen->open(options.size, error)) return nullptr;
    return screen;
}

}  // namespace flarebox::hostgame
