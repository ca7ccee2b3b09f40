#pragma once

#include <Foundation/Export.h>
#include <UIKit/Geometry.h>

#include <cstdint>

namespace flarebox {

/// A rectangle of whole pixels.
struct PixelRect {
    int x = 0;       ///< of the left column
    int y = 0;       ///< of the upper row
    int width = 0;   ///< columns
    int height = 0;  ///< rows
    /// Whether it holds no pixel.
    bool isEmpty() const { return width <= 0 || height <= 0; }
    friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

using TextureId = std::uint32_t;  ///< 0 is no texture

/// One rectangle to draw. All coordinates are pixels of the target; the picture is scaled into the destination with
/// linear filtering and multiplied by the opacity; nothing is drawn outside the clip.
struct TexturedQuad {
    TextureId texture = 0;  ///< one of this compositor's
    PixelRect source;       ///< the part of the texture that is shown
    CGRect destination;     ///< where it goes, in pixels; may lie between them
    CGRect clip;            ///< in pixels
    float opacity = 1;      ///< 0 to 1
    friend bool operator==(const TexturedQuad&, const TexturedQuad&) = default;
};

/// The pixels of a target of that many pixels whose centres the rectangle covers, so that all that draw pixels agree on
/// what lies on an edge. Empty as well where its source lies outside a texture of that many pixels.
FLAREBOX_EXPORT PixelRect coveredPixels(const TexturedQuad& quad, int textureWidth, int textureHeight, int targetWidth,
                                        int targetHeight);

/// The seam to a game's renderer: textures and rectangles, nothing else. A game with its own renderer implements the
/// four pure functions. All are called on the main thread, only while the host draws (`UIHost::draw`) or ends
/// (`UIHost::releaseTextures`).
class FLAREBOX_EXPORT Compositor {
public:
    /// How a pixel carries its colour: multiplied by its alpha, or as it is.
    enum class Alpha : std::uint8_t { Premultiplied, Straight };

    virtual ~Compositor() = default;

    /// A texture of that many pixels, its content undefined until updated; 0 when it cannot be made (the rectangle is
    /// then left out).
    virtual TextureId createTexture(int width, int height) = 0;
    /// Copies pixels into a part of the texture. Each pixel is 0xAARRGGBB in the machine's byte order, its alpha as
    /// `alphaConvention` says; `stride` is in pixels. The memory is the caller's and is gone after the call.
    virtual void updateTexture(TextureId texture, const PixelRect& region, const std::uint32_t* pixels, int stride) = 0;
    /// Gives a texture back that `createTexture` made; no rectangle names it any more.
    virtual void destroyTexture(TextureId texture) = 0;
    /// Draws over what was drawn before; see TexturedQuad.
    virtual void drawQuad(const TexturedQuad& quad) = 0;

    /// How the pixels handed to `updateTexture` carry their alpha.
    virtual Alpha alphaConvention() const { return Alpha::Premultiplied; }
    /// Longest side of a texture in pixels; larger pictures are cut down.
    virtual int maximumTextureSize() const { return 4096; }
    /// Around all rectangles of one frame.
    virtual void beginFrame() {}
    /// The same: what was changed in the renderer can be put back.
    virtual void endFrame() {}
};

}  // namespace flarebox
