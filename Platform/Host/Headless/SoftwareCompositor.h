#pragma once

#include <Foundation/Export.h>
#include <UIKit/Compositor.h>

#include <cstdint>
#include <span>
#include <vector>

namespace flarebox {

/// Draws into memory: the reference for what every other compositor has to show. Main thread.
class FLAREBOX_EXPORT SoftwareCompositor : public Compositor {
public:
    /// Sides in pixels, at least 1.
    SoftwareCompositor(int width, int height);

    /// The target is then empty. Textures stay.
    void resize(int width, int height);
    int width() const { return width_; }    ///< pixels
    int height() const { return height_; }  ///< pixels
    /// Rows from the top without gaps, each pixel 0xAARRGGBB with the colour premultiplied by the alpha. What lies in
    /// it is drawn over; a host draws its own picture here first.
    std::span<std::uint32_t> pixels() { return target_; }
    /// The same, to look at.
    std::span<const std::uint32_t> pixels() const { return target_; }
    /// Of a place within the target.
    std::uint32_t pixelAt(int x, int y) const {
        return target_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)];
    }
    /// Fills the target with one premultiplied colour.
    void clear(std::uint32_t pixel = 0);

    TextureId createTexture(int width, int height) override;
    void updateTexture(TextureId texture, const PixelRect& region, const std::uint32_t* pixels, int stride) override;
    void destroyTexture(TextureId texture) override;
    void drawQuad(const TexturedQuad& quad) override;
    /// Textures that were made and not given back.
    std::size_t textureCount() const;

private:
    struct Texture {
        int width = 0, height = 0;
        std::vector<std::uint32_t> pixels;
    };

    Texture* textureOf(TextureId texture);
    void drawCopied(const Texture& texture, const TexturedQuad& quad, const PixelRect& area);
    void drawFiltered(const Texture& texture, const TexturedQuad& quad, const PixelRect& area);

    int width_, height_;
    std::vector<std::uint32_t> target_;
    /// A texture's id is its place plus one.
    std::vector<Texture> textures_;
};

}  // namespace flarebox
