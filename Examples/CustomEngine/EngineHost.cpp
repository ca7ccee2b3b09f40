#include "EngineHost.h"

using namespace flarebox;

namespace {

/// Textures count from 1, sprites from 0.
engine::Sprite spriteOf(TextureId texture) {
    return static_cast<engine::Sprite>(texture) - 1;
}

engine::Rect rectOf(const CGRect& rect) {
    return {static_cast<float>(rect.minX()), static_cast<float>(rect.minY()), static_cast<float>(rect.width()),
            static_cast<float>(rect.height())};
}

}  // namespace

TextureId EngineCompositor::createTexture(int width, int height) {
    return static_cast<TextureId>(renderer_.makeSprite(width, height) + 1);
}

void EngineCompositor::updateTexture(TextureId texture, const PixelRect& region, const std::uint32_t* pixels,
                                     int stride) {
    std::vector<std::uint8_t> rgba;
    for (int y = 0; y < region.height; ++y) {
        for (int x = 0; x < region.width; ++x) {
            const std::uint32_t pixel = pixels[y * stride + x];
            for (const int shift : {16, 8, 0, 24}) rgba.push_back(static_cast<std::uint8_t>(pixel >> shift));
        }
    }
    renderer_.fillSprite(spriteOf(texture), region.x, region.y, region.width, region.height, rgba);
}

void EngineCompositor::destroyTexture(TextureId texture) {
    renderer_.freeSprite(spriteOf(texture));
}

void EngineCompositor::drawQuad(const TexturedQuad& quad) {
    const auto& [x, y, width, height] = quad.source;
    renderer_.setClip(rectOf(quad.clip));
    renderer_.drawSprite(spriteOf(quad.texture), rectOf(CGRectMake(x, y, width, height)), rectOf(quad.destination),
                         quad.opacity);
}

EngineHost::EngineHost(engine::Renderer& renderer, double density)
    : UIHost({renderer.width() / density, renderer.height() / density}, density),
      renderer_(renderer),
      density_(density),
      compositor_(renderer) {
    resize(size(), density_);
}

EngineHost::~EngineHost() {
    releaseTextures(compositor_);
}

CGSize EngineHost::size() const {
    return {renderer_.width() / density_, renderer_.height() / density_};
}

bool EngineHost::handle(const engine::Event& event) {
    return dispatch(event) == InputResult::Consumed;
}

InputResult EngineHost::dispatch(const engine::Event& event) {
    constexpr int mouse = 0;
    constexpr CGFloat pointsPerNotch = 40;
    static constexpr const char* keyNames[] = {"", "escape", "return", "space", "left", "right", ""};
    const CGPoint point{event.x / density_, event.y / density_};
    switch (event.kind) {
        case engine::EventKind::MouseDown:
            isPressed_ = true;
            return pointerDown(mouse, point);
        case engine::EventKind::MouseUp:
            isPressed_ = false;
            return pointerUp(mouse, point);
        case engine::EventKind::MouseMove:
            return isPressed_ ? pointerMoved(mouse, point) : pointerHovered(point);
        case engine::EventKind::Wheel:
            return scrolled(point, 0, -event.notches * pointsPerNotch);
        case engine::EventKind::KeyPress:
            return keyDown(keyNames[static_cast<int>(event.key)]);
        case engine::EventKind::Resize:
            resize(size(), density_);
            return InputResult::Ignored;
        case engine::EventKind::Deactivate:
            isPressed_ = false;
            pointerCancelled(mouse);
            return InputResult::Ignored;
        case engine::EventKind::MouseLeave:
            pointerLeft();
            return InputResult::Ignored;
    }
    return InputResult::Ignored;
}

void EngineHost::draw() {
    UIHost::draw(compositor_);
}
