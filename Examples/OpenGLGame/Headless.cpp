#include "Headless.h"

#include "Crystal.h"
#include "OffscreenContext.h"
#include "OffscreenTarget.h"

#include <Flarebox/Flarebox.h>
#include <Foundation/MainQueue.h>
#include <Host/OpenGL/OpenGLHost.h>
#include <UIKit/UIWindow.h>

#include <SDL_image.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <memory>
#include <thread>

namespace flarebox::openglgame {
namespace {

constexpr double frameTime = 1.0 / 60, slideTime = 0.5, patience = 20;

/// Lets virtual time pass, frame by frame.
void pass(UIHost& panel, VirtualClock& clock, double seconds) {
    for (const double end = clock.uptime() + seconds; clock.uptime() < end;) {
        MainQueue::advance(clock, frameTime);
        panel.update(1);
    }
}

/// Runs frames while virtual time stands still; false when it takes too long.
bool await(UIHost& panel, const std::function<bool()>& condition) {
    const double deadline = Clock::real().uptime() + patience;
    while (!condition()) {
        if (Clock::real().uptime() > deadline) return false;
        panel.update(1);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// The tab, open and with everything loaded; null, with the reason, when that cannot be.
Ref<FlareboxView> openTab(UIHost& panel, VirtualClock& clock, std::string& error) {
    const Ref<FXUserSession> player = FXUserSession::init();
    FlareboxConfig::defaultConfig().configFlareboxWithUserSession(player, "my-game", "1.0", true, 2);
    Ref<FlareboxView> tab = FlareboxView::init();
    if (!tab) {
        error = "the kit's resources are missing";
        return nullptr;
    }
    tab->showAtWindow();
    pass(panel, clock, slideTime);
    tab->open();
    pass(panel, clock, slideTime);
    const bool isLoaded = await(panel, [&] { return tab->currentAsset() != nullptr; }) &&
                          await(panel, [] { return MainQueue::shared().isIdle(); });
    pass(panel, clock, slideTime);
    if (!isLoaded) error = "the service does not answer";
    return isLoaded ? tab : nullptr;
}

bool savePicture(const examples::OffscreenTarget& target, const std::string& path) {
    std::vector<std::uint32_t> pixels = target.pixels();
    const std::unique_ptr<SDL_Surface, void (*)(SDL_Surface*)> picture(
        SDL_CreateRGBSurfaceWithFormatFrom(pixels.data(), target.width(), target.height(), 32, target.width() * 4,
                                           SDL_PIXELFORMAT_ARGB8888),
        SDL_FreeSurface);
    return picture && IMG_SavePNG(picture.get(), path.c_str()) == 0;
}

}  // namespace

std::string takePicture(const Screen& screen, VirtualClock& clock, const std::string& path) {
    const examples::OffscreenContext context(examples::OffscreenContext::Kind::Desktop);
    if (!context.failure().empty()) return context.failure();
    const auto pixels = [&](CGFloat points) { return static_cast<int>(std::lround(points * screen.scale)); };
    const examples::OffscreenTarget target(pixels(screen.size.width), pixels(screen.size.height));
    const Crystal crystal;

    OpenGLHost panel(examples::OffscreenContext::resolve, screen.size, screen.scale);
    std::string error;
    const Ref<FlareboxView> tab = openTab(panel, clock, error);
    if (!tab) return error;
    crystal.draw(target.width(), target.height(), 1);
    panel.draw();
    return savePicture(target, path) ? "" : "cannot write " + path;
}

}  // namespace flarebox::openglgame
