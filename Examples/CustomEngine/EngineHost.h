#pragma once

#include "Engine.h"

#include <UIKit/Compositor.h>
#include <UIKit/UIHost.h>

/// Draws the panel with the engine's renderer.
class EngineCompositor : public flarebox::Compositor {
public:
    explicit EngineCompositor(engine::Renderer& renderer) : renderer_(renderer) {}

    flarebox::TextureId createTexture(int width, int height) override;
    void updateTexture(flarebox::TextureId texture, const flarebox::PixelRect& region, const std::uint32_t* pixels,
                       int stride) override;
    void destroyTexture(flarebox::TextureId texture) override;
    void drawQuad(const flarebox::TexturedQuad& quad) override;
    /// The engine multiplies by the alpha itself.
    Alpha alphaConvention() const override { return Alpha::Straight; }
    /// Leaves the engine as it was.
    void endFrame() override { renderer_.resetClip(); }

private:
    engine::Renderer& renderer_;
};

/// The panel in a game on this engine, which counts in pixels; `density` of them make a point.
class EngineHost : public flarebox::UIHost {
public:
    EngineHost(engine::Renderer& renderer, double density);
    ~EngineHost() override;

    /// Whether the panel took the event; otherwise it is the game's.
    bool handle(const engine::Event& event);
    /// Each frame, after `update`, over the game's picture.
    void draw();

private:
    flarebox::CGSize size() const;
    flarebox::InputResult dispatch(const engine::Event& event);

    engine::Renderer& renderer_;
    double density_;
    EngineCompositor compositor_;
    bool isPressed_ = false;
};
