#pragma once

#include <SceneKit/SceneEngine.h>

namespace flarebox::detail {

/// The light that the floor throws back below a product. Keeps the last one: it looks the same as long as only the
/// product turns.
class FloorGlow {
public:
    /// Lays the glow of the frame's floor beneath the picture.
    void layBeneath(ScenePicture& picture, const SceneFrame& frame);

private:
    struct Shape {
        int width = 0, height = 0;
        /// The floor's height, its normal as the camera sees it, and the zoom.
        float floor = 0, up = 0, towards = 0, zoom = 0;
        friend bool operator==(const Shape&, const Shape&) = default;
    };

    void prepare(const Shape& shape);

    Shape shape_;
    /// Premultiplied white, one a pixel.
    std::vector<std::uint8_t> glow_;
};

}  // namespace flarebox::detail
