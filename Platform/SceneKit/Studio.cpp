#include <SceneKit/Studio.h>

#include <cmath>
#include <numbers>

namespace flarebox::detail {
namespace {

/// A soft lamp: brightest along an axis, falling off as exp(sharpness * (cosine - 1)).
struct Lamp {
    SCNVector3 axis;
    float sharpness;
    SCNVector3 color;
};

// A large soft box above to the left, a strip light to the right, rims behind on both sides, and a reflector below.
constexpr Lamp lamps[] = {
    {{-0.55F, 0.62F, 0.56F}, 14, {5.2F, 5.1F, 4.9F}},  {{0.89F, 0.20F, 0.41F}, 22, {3.4F, 3.5F, 3.7F}},
    {{-0.78F, 0.25F, -0.57F}, 16, {2.6F, 2.9F, 3.4F}}, {{0.70F, 0.35F, -0.62F}, 16, {3.0F, 2.8F, 2.6F}},
    {{0.0F, 1.0F, 0.0F}, 7, {1.4F, 1.4F, 1.45F}},      {{0.0F, -0.94F, 0.34F}, 4, {0.22F, 0.21F, 0.2F}},
};
constexpr SCNVector3 darkness{0.10F, 0.10F, 0.11F};

float dot(SCNVector3 a, SCNVector3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
SCNVector3 scaled(SCNVector3 v, float factor) {
    return {v.x * factor, v.y * factor, v.z * factor};
}
SCNVector3 sum(SCNVector3 a, SCNVector3 b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

/// A lamp smeared over the directions that a rough surface mirrors is again nearly such a lamp, wider and as much
/// weaker.
Lamp blurred(const Lamp& lamp, float roughness) {
    const float alpha = roughness * roughness;
    if (alpha < 1e-3F) return lamp;
    const float lobe = 0.5F / (alpha * alpha);
    const float sharpness = lamp.sharpness * lobe / (lamp.sharpness + lobe);
    return {lamp.axis, sharpness, scaled(lamp.color, sharpness / lamp.sharpness)};
}

std::array<float, 9> basis(SCNVector3 n) {
    return {0.282095F,
            -0.488603F * n.y,
            0.488603F * n.z,
            -0.488603F * n.x,
            1.092548F * n.x * n.y,
            -1.092548F * n.y * n.z,
            0.315392F * (3 * n.z * n.z - 1),
            -1.092548F * n.x * n.z,
            0.546274F * (n.x * n.x - n.y * n.y)};
}

}  // namespace

SCNVector3 Studio::light(SCNVector3 direction, float roughness) {
    const SCNVector3 toward = scaled(direction, 1 / std::sqrt(dot(direction, direction)));
    SCNVector3 color = darkness;
    for (const Lamp& each : lamps) {
        const Lamp lamp = blurred(each, roughness);
        color = sum(color, scaled(lamp.color, std::exp(lamp.sharpness * (dot(lamp.axis, toward) - 1))));
    }
    return color;
}

std::array<SCNVector3, 9> Studio::harmonics() {
    // The light is smooth: this many directions, evenly spread along a spiral, are plenty.
    constexpr int samples = 4096;
    constexpr float weight = 4 * std::numbers::pi_v<float> / samples;
    constexpr float goldenAngle = 2.39996323F;
    std::array<SCNVector3, 9> coefficients{};
    for (int i = 0; i < samples; ++i) {
        const float z = 1 - 2 * (static_cast<float>(i) + 0.5F) / samples;
        const float radius = std::sqrt(1 - z * z), angle = goldenAngle * static_cast<float>(i);
        const SCNVector3 direction{radius * std::cos(angle), radius * std::sin(angle), z};
        const SCNVector3 color = light(direction, 0);
        const auto functions = basis(direction);
        for (std::size_t k = 0; k < functions.size(); ++k)
            coefficients[k] = sum(coefficients[k], scaled(color, functions[k] * weight));
    }
    return coefficients;
}

SCNVector3 Studio::keyDirection() {
    constexpr SCNVector3 direction{-0.45F, 0.75F, 0.6F};
    return scaled(direction, 1 / std::sqrt(dot(direction, direction)));
}

float Studio::roughnessOfLevel(int level, int levels) {
    // The renderer looks at level r(2 - r) of the map's levels for roughness r.
    return 1 - std::sqrt(1 - static_cast<float>(level) / static_cast<float>(levels - 1));
}

}  // namespace flarebox::detail
