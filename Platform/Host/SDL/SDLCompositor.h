#pragma once

#include <Foundation/Export.h>
#include <UIKit/Compositor.h>

#include <memory>
#include <optional>
#include <vector>

struct SDL_Renderer;
struct SDL_Texture;
struct SDL_Rect;

namespace flarebox {

/// Draws the panel with a game's SDL_Renderer, in pixels of its window. Between `beginFrame` and `endFrame` it sets the
/// renderer's state as it needs it; afterwards render target, viewport, clip, scale, logical size, blend mode and
/// colour are the game's again. The renderer must outlive it. Main thread.
class FLAREBOX_EXPORT SDLCompositor : public Compositor {
public:
    explicit SDLCompositor(SDL_Renderer* renderer);  ///< of the game, which keeps it
    ~SDLCompositor() override;
    SDLCompositor(const SDLCompositor&) = delete;
    SDLCompositor& operator=(const SDLCompositor&) = delete;

    TextureId createTexture(int width, int height) override;
    void updateTexture(TextureId texture, const PixelRect& region, const std::uint32_t* pixels, int stride) override;
    void destroyTexture(TextureId texture) override;
    void drawQuad(const TexturedQuad& quad) override;
    /// Straight, because not every renderer of SDL can blend premultiplied colours.
    Alpha alphaConvention() const override { return Alpha::Straight; }
    int maximumTextureSize() const override { return maximumTextureSize_; }
    void beginFrame() override;
    void endFrame() override;

private:
    struct Texture;
    struct RendererState;

    SDL_Texture* textureOf(TextureId texture) const;
    void setClip(const SDL_Rect* clip);

    SDL_Renderer* renderer_;
    int maximumTextureSize_;
    /// A texture's id is its place here plus one; places of destroyed textures are used again.
    std::vector<SDL_Texture*> textures_;
    std::unique_ptr<RendererState> gameState_;
};

}  // namespace flarebox
