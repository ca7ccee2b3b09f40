#include <UIKit/Compositor.h>

#include <cmath>

namespace flarebox {

PixelRect coveredPixels(const TexturedQuad& quad, int textureWidth, int textureHeight, int targetWidth,
                        int targetHeight) {
    const PixelRect& source = quad.source;
    const bool fits = source.x >= 0 && source.y >= 0 && source.width > 0 && source.height > 0 &&
                      source.x + source.width <= textureWidth && source.y + source.height <= textureHeight;
    const CGRect shown = quad.destination.intersection(quad.clip).intersection(
        {{}, {static_cast<CGFloat>(targetWidth), static_cast<CGFloat>(targetHeight)}});
    if (!fits || shown.isEmpty()) return {};
    const auto edge = [](CGFloat value) { return static_cast<int>(std::ceil(value - 0.5)); };
    const int left = edge(shown.minX()), top = edge(shown.minY());
    return {left, top, edge(shown.maxX()) - left, edge(shown.maxY()) - top};
}

}  // namespace flarebox
