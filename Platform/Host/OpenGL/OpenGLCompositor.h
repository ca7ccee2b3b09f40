#pragma once

#include <Foundation/Export.h>
#include <Host/OpenGL/OpenGLResolver.h>
#include <UIKit/Compositor.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace flarebox {

/// Draws the panel with the OpenGL context that a game has made current: OpenGL 3.3 core or later, or OpenGL ES 3.0 or
/// later. It draws into the framebuffer that is bound, whose lower left corner is the target's, and leaves every state
/// of the context as it was. It never asks for errors: those that the game has left are the game's.
///
/// Everything is made when it is first needed. Where that fails the log says once why, and nothing is drawn. Every call
/// needs the same context to be current, and no transform feedback or conditional rendering to be under way. Main
/// thread.
class FLAREBOX_EXPORT OpenGLCompositor : public Compositor {
public:
    explicit OpenGLCompositor(OpenGLResolver resolve);  ///< calls nothing yet
    /// With the context still current, unless it was lost.
    ~OpenGLCompositor() override;
    OpenGLCompositor(const OpenGLCompositor&) = delete;
    OpenGLCompositor& operator=(const OpenGLCompositor&) = delete;

    /// The target's size in pixels, at least 1: before each frame that has another one.
    void setTargetSize(int width, int height);
    /// The context is gone, or is about to be replaced, with all that was made in it: forgets everything without a call
    /// into OpenGL. `UIHost::releaseTextures` comes next; what is needed is then made anew in the context that is
    /// current at the next frame.
    void contextLost();

    TextureId createTexture(int width, int height) override;
    void updateTexture(TextureId texture, const PixelRect& region, const std::uint32_t* pixels, int stride) override;
    void destroyTexture(TextureId texture) override;
    void drawQuad(const TexturedQuad& quad) override;
    int maximumTextureSize() const override;
    void beginFrame() override;
    void endFrame() override;

private:
    class Device;
    struct Texture {
        /// 0: the place is free.
        unsigned name = 0;
        int width = 0, height = 0;
    };

    Device* device() const;
    Texture* textureOf(TextureId texture);

    OpenGLResolver resolve_;
    int width_ = 1, height_ = 1;
    /// Made at the first call that needs it, even if that only asks.
    mutable std::unique_ptr<Device> device_;
    mutable bool hasFailed_ = false;
    /// A texture's id is its place here plus one; places of destroyed textures are used again.
    std::vector<Texture> textures_;
};

}  // namespace flarebox
