#pragma once

#include "Scene.h"

namespace flarebox {
class Canvas;
}

namespace flarebox::hostgame {

/// Draws the scene on a canvas whose points are the scene's.
void paint(const Scene& scene, Canvas& canvas);

}  // namespace flarebox::hostgame
