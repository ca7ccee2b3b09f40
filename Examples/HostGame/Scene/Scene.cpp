#include "Scene.h"

#include <cmath>

namespace flarebox::hostgame {

void Scene::addLine(CGPoint from, CGPoint to, CGFloat width, const UIColor& color) {
    const CGPoint along = to - from;
    const CGFloat length = std::hypot(along.x, along.y);
    if (length <= 0) return;
    const CGPoint side{-along.y / length * width / 2, along.x / length * width / 2};
    add(Polygon{{from - side, to - side, to + side, from + side}, color});
}

}  // namespace flarebox::hostgame
