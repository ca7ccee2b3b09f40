// A game that draws with OpenGL, and the tab in it. Its five numbered lines are all that it adds; what it does with
// input is in PanelInput.cpp.

#include "Crystal.h"
#include "Headless.h"
#include "PanelInput.h"

#include <Examples/HostGame/Options.h>
#include <Examples/HostGame/Surroundings.h>
#include <Flarebox/Flarebox.h>
#include <Foundation/Clock.h>
#include <Host/OpenGL/OpenGLHost.h>

#include <SDL.h>

#include <cstdio>
#include <string>

using namespace flarebox;
using namespace flarebox::openglgame;

namespace {

void play(SDL_Window* window) {
    const Crystal crystal;
    OpenGLHost panel(SDL_GL_GetProcAddress, sizeOf(window), scaleOf(window));  // 1
    const Ref<FXUserSession> player = FXUserSession::init();
    FlareboxConfig::defaultConfig().configFlareboxWithUserSession(player, "my-game", "1.0", true, 2);  // 2
    const Ref<FlareboxView> tab = FlareboxView::init();
    if (tab) tab->showAtWindow();  // 3

    for (bool isRunning = true; isRunning;) {
        SDL_Event event;
        while (SDL_PollEvent(&event)) {
            if (handleEvent(panel, window, event) == InputResult::Consumed) continue;  // 4
            if (event.type == SDL_QUIT) isRunning = false;
        }
        int width = 0, height = 0;
        SDL_GL_GetDrawableSize(window, &width, &height);
        crystal.draw(width, height, Clock::real().uptime());
        panel.update(), panel.draw();  // 5
        SDL_GL_SwapWindow(window);
    }
}

/// What went wrong; empty when nothing did.
std::string playInWindow(CGSize size) {
    if (SDL_Init(SDL_INIT_VIDEO) != 0) return SDL_GetError();
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 3);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 3);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 24);
    SDL_Window* window = SDL_CreateWindow("Crystal", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                          static_cast<int>(size.width), static_cast<int>(size.height),
                                          SDL_WINDOW_OPENGL | SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    const SDL_GLContext context = window ? SDL_GL_CreateContext(window) : nullptr;
    std::string error;
    if (context) {
        SDL_GL_SetSwapInterval(1);
        play(window);
    } else {
        error = std::string("cannot open a window: ") + SDL_GetError() + "; --headless needs none";
    }
    SDL_GL_DeleteContext(context);
    SDL_DestroyWindow(window);
    SDL_Quit();
    return error;
}

int fail(int status, const std::string& reason) {
    std::fprintf(stderr, "flarebox-openglgame: %s\n", reason.c_str());
    return status;
}

constexpr const char* help =
    "usage: flarebox-openglgame [--size WxH] [--api-url URL]\n"
    "       flarebox-openglgame --headless --screenshot FILE.png [--size WxH] [--scale S] [--api-url URL]\n"
    "A game on OpenGL 3.3 with the tab in it. Without --api-url it brings a service of its own.\n";

}  // namespace

int main(int count, char** arguments) {
    constexpr int failed = 1, misused = 2;
    auto [options, error] =
        hostgame::parseOptions({arguments + 1, static_cast<std::size_t>(count > 0 ? count - 1 : 0)});
    if (!error.empty()) return fail(misused, error);
    if (options.showsHelp) return std::fputs(help, stdout) < 0 ? failed : 0;
    if (options.isHeadless != options.screenshot.has_value())
        return fail(misused, "--headless and --screenshot go together");

    options.hasVirtualClock = options.isHeadless;
    hostgame::Surroundings surroundings;
    error = surroundings.prepare(options);
    if (error.empty()) {
        error = options.isHeadless
                    ? takePicture({options.size, options.scale}, *surroundings.virtualClock(), *options.screenshot)
                    : playInWindow(options.size);
    }
    return error.empty() ? 0 : fail(failed, error);
}
