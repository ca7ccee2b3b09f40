#pragma once

#include "Artwork.h"
#include "Canvas.h"

#include <string>

namespace flarebox::examples {

/// How one product is staged.
struct Scene {
    void (*draw)(Canvas&);
    Color backdrop;
    /// Where the product touches the floor, in its own units; more than 1 lets it float.
    double floor;
    /// Half the width of its footprint, in its own units.
    double footprint;
    /// What surrounds the product and casts no shadow, its light or its steam; may be null.
    void (*aura)(Canvas&) = nullptr;
};

/// Stages the scene before its backdrop and returns the PNG file.
std::string photograph(const Scene& scene, PictureKind kind);

}  // namespace flarebox::examples
