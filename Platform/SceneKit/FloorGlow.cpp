#include <SceneKit/FloorGlow.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace flarebox::detail {
namespace {

constexpr float brightest = 0.20F;
constexpr float radius = 1.25F;

/// Cool white, by the strength of the glow and what the picture lets through.
std::uint32_t over(std::uint32_t front, std::uint32_t glow) {
    const std::uint32_t through = 255 - (front >> 24);
    const std::uint32_t strength = (glow * through + 127) / 255;
    return front + (strength << 24 | (strength * 13 / 16) << 16 | (strength * 14 / 16) << 8 | strength);
}

/// From 0 to 1, evenly strewn: so dark a gradient shows its steps otherwise.
float grain(int x, int y) {
    const float step = 0.06711056F * static_cast<float>(x) + 0.00583715F * static_cast<float>(y);
    const float part = 52.9829189F * (step - std::floor(step));
    return part - std::floor(part);
}

}  // namespace

void FloorGlow::layBeneath(ScenePicture& picture, const SceneFrame& frame) {
    const auto& m = frame.orientation.m;
    prepare({picture.width, picture.height, frame.floor, m[5], m[6], frame.zoom});
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
        if (glow_[i]) picture.pixels[i] = over(picture.pixels[i], glow_[i]);
    }
}

void FloorGlow::prepare(const Shape& shape) {
    if (shape == shape_) return;
    shape_ = shape;
    const auto width = static_cast<std::size_t>(shape.width), height = static_cast<std::size_t>(shape.height);
    glow_.assign(width * height, 0);
    constexpr auto distance = static_cast<float>(SceneCamera::distance);
    constexpr float halfAngle = static_cast<float>(SceneCamera::fieldOfView / 2 * std::numbers::pi / 180);
    const float unit = 2 * std::tan(halfAngle) / shape.zoom / static_cast<float>(std::min(shape.width, shape.height));
    // From the eye at (0, 0, distance) to the plane whose points have the product `floor` with the normal.
    const float eye = shape.towards * distance - shape.floor;
    if (eye <= 0) return;  // seen from below

    std::size_t at = 0;
    for (int y = 0; y < shape.height; ++y) {
        const float rayY = -(static_cast<float>(y) + 0.5F - static_cast<float>(shape.height) / 2) * unit;
        const float slope = shape.up * rayY - shape.towards;
        const float along = slope < 0 ? -eye / slope : 0;
        for (int x = 0; x < shape.width; ++x, ++at) {
            if (along <= 0) continue;
            const float rayX = (static_cast<float>(x) + 0.5F - static_cast<float>(shape.width) / 2) * unit;
            const float pointX = rayX * along, pointY = rayY * along, pointZ = distance - along;
            // The middle of the glow lies where the product stands.
            const float aboutY = pointY - shape.floor * shape.up, aboutZ = pointZ - shape.floor * shape.towards;
            const float part = (pointX * pointX + aboutY * aboutY + aboutZ * aboutZ) / (radius * radius);
            if (part >= 1) continue;
            const float fading = (1 - part) * (1 - part);
            glow_[at] = static_cast<std::uint8_t>(255 * brightest * fading + grain(x, y));
        }
    }
}

}  // namespace flarebox::detail
