#pragma once

#include <UIKit/Compositor.h>
#include <UIKit/Geometry.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace flarebox::detail {

/// The textures that a tree's bitmaps have in one compositor. Views hold on to it, so that the texture of a view that
/// dies is given back when the host draws next.
class LayerTextures {
public:
    /// Begins a new round, in which no texture exists, when it is another compositor than before.
    void use(Compositor& compositor);
    /// Gives back all textures, if that compositor has them.
    void release(Compositor& compositor);
    /// Begins a new round with the same compositor.
    void discardAll();
    std::uint64_t round() const { return round_; }
    int maximumSize() const { return compositor_->maximumTextureSize(); }

    /// Hands premultiplied pixels to the compositor, in the texture given if it has that size already; changes them to
    /// straight alpha if the compositor wants that. Returns the texture, 0 when there is none to be had.
    TextureId upload(std::vector<std::uint32_t>& pixels, int width, int height, TextureId texture, bool isSameSize);
    /// One pixel of the colour.
    TextureId plain(const UIColor& color);
    /// For a texture of the present round that is in no list made from now on; `destroyRetired` comes before each list.
    void retire(TextureId texture) { retired_.push_back(texture); }
    void destroyRetired();

    std::size_t uploads() const { return uploads_; }

    /// What the views that carry others tell the renderer between two pictures.
    struct Carriers {
        /// The number of the list in force.
        std::uint64_t list = 0;
        bool haveMoved = false;
    };
    Carriers& carriers() { return carriers_; }
    const Carriers& carriers() const { return carriers_; }

private:
    void destroy(TextureId texture);

    Compositor* compositor_ = nullptr;
    std::uint64_t round_ = 1;
    std::vector<TextureId> textures_, retired_;
    std::vector<std::pair<UIColor, TextureId>> colors_;
    std::size_t uploads_ = 0;
    Carriers carriers_;
};

}  // namespace flarebox::detail
