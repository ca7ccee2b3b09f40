#pragma once

#include <UIKit/UIHost.h>

struct SDL_Window;
union SDL_Event;

namespace flarebox::openglgame {

/// Size in points and pixels per point of a window that OpenGL draws into.
CGSize sizeOf(SDL_Window* window);
CGFloat scaleOf(SDL_Window* window);

/// Hands an event of SDL to the panel: mouse, wheel, keys, and a new size of the window.
InputResult handleEvent(UIHost& panel, SDL_Window* window, const SDL_Event& event);

}  // namespace flarebox::openglgame
