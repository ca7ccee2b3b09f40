// The shortest game with the tab in it. Its five numbered lines are all that a game on SDL2 adds.

#include <Flarebox/Flarebox.h>
#include <Host/SDL/SDLHost.h>

#include <SDL.h>

using namespace flarebox;

namespace {

void play(SDL_Window* window, SDL_Renderer* renderer) {
    SDLHost panel(window, renderer);  // 1
    const Ref<FXUserSession> player = FXUserSession::init();
    FlareboxConfig::defaultConfig().configFlareboxWithUserSession(player, "my-game", "1.0", true, 2);  // 2
    const Ref<FlareboxView> tab = FlareboxView::init();
    if (tab) tab->showAtWindow();  // 3

    for (bool isRunning = true; isRunning;) {
        SDL_Event event;
        while (SDL_PollEvent(&event)) {
            if (panel.handleEvent(event) == InputResult::Consumed) continue;  // 4
            if (event.type == SDL_QUIT) isRunning = false;
        }
        SDL_SetRenderDrawColor(renderer, 40, 70, 120, 255);
        SDL_RenderClear(renderer);
        panel.update();
        panel.draw();  // 5
        SDL_RenderPresent(renderer);
        SDL_Delay(15);
    }
}

}  // namespace

int main(int, char**) {
    if (SDL_Init(SDL_INIT_VIDEO) != 0) return 1;
    SDL_Window* window = SDL_CreateWindow("My game", 0, 0, 960, 540, SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    SDL_Renderer* renderer = SDL_CreateRenderer(window, -1, 0);
    if (renderer) play(window, renderer);
    SDL_DestroyRenderer(renderer);
    SDL_DestroyWindow(window);
    SDL_Quit();
    return renderer ? 0 : 1;
}
