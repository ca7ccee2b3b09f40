#pragma once

#include <UIKit/Compositor.h>

#include <cstddef>
#include <set>
#include <vector>

namespace flarebox {

/// Draws nothing, and knows what it was asked to draw. For tests and measurements. Main thread.
class CountingCompositor : public Compositor {
public:
    explicit CountingCompositor(Alpha alpha = Alpha::Premultiplied) : alpha_(alpha) {}

    std::size_t texturesCreated = 0, texturesUpdated = 0, texturesDestroyed = 0, frames = 0;
    /// Sum of the pixels handed to `updateTexture`.
    std::size_t pixelsUploaded = 0;
    /// Calls that name a texture which does not exist, or a part outside it.
    std::size_t mistakes = 0;
    /// Of the last frame.
    std::vector<TexturedQuad> quads;

    std::size_t texturesAlive() const { return alive_.size(); }

    TextureId createTexture(int, int) override {
        ++texturesCreated;
        alive_.insert(++last_);
        return last_;
    }
    void updateTexture(TextureId texture, const PixelRect& region, const std::uint32_t*, int) override {
        ++texturesUpdated;
        mistakes += alive_.count(texture) == 0;
        pixelsUploaded += static_cast<std::size_t>(region.width) * static_cast<std::size_t>(region.height);
    }
    void destroyTexture(TextureId texture) override {
        ++texturesDestroyed;
        mistakes += alive_.erase(texture) == 0;
    }
    void drawQuad(const TexturedQuad& quad) override {
        mistakes += alive_.count(quad.texture) == 0;
        quads.push_back(quad);
    }
    Alpha alphaConvention() const override { return alpha_; }
    void beginFrame() override {
        ++frames;
        quads.clear();
    }

private:
    Alpha alpha_;
    TextureId last_ = 0;
    std::set<TextureId> alive_;
};

}  // namespace flarebox
