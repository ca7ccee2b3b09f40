#pragma once

#include "Scene.h"

struct SDL_Renderer;

namespace flarebox::hostgame {

/// Draws the scene as triangles with softened edges, over the whole of the renderer's window.
void paint(const Scene& scene, SDL_Renderer& renderer);

}  // namespace flarebox::hostgame
