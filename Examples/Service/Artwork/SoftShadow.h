#pragma once

#include "Canvas.h"

namespace flarebox::examples {

/// Lays the shadow of a product in its own units down and to the right of it, soft at the edge.
void drawSoftShadow(Canvas& canvas, void (*product)(Canvas&), Color color);

}  // namespace flarebox::examples
