#include <SceneKit/Backend/Filament/StudioLight.h>

#include <SceneKit/Studio.h>

#include <filament/LightManager.h>
#include <math/vec3.h>
#include <utils/EntityManager.h>

#include <vector>

namespace flarebox::detail {
namespace {

using filament::Texture;
using filament::math::float3;

constexpr std::uint32_t side = 128;
constexpr std::uint8_t levels = 6;
// Against the camera's default exposure.
constexpr float surroundingsIntensity = 30'000, keyIntensity = 45'000;

SCNVector3 faceDirection(int face, float s, float t) {
    switch (face) {
        case 0:
            return {1, -t, -s};
        case 1:
            return {-1, -t, s};
        case 2:
            return {s, 1, t};
        case 3:
            return {s, -1, -t};
        case 4:
            return {s, -t, 1};
        default:
            return {-s, -t, -1};
    }
}

void fillLevel(filament::Engine& engine, Texture& texture, std::uint8_t level) {
    const std::uint32_t size = side >> level;
    const std::size_t faceTexels = std::size_t{size} * size;
    auto* texels = new std::vector<float3>(faceTexels * 6);
    auto texel = texels->begin();
    const float roughness = Studio::roughnessOfLevel(level, levels);
    for (int face = 0; face < 6; ++face) {
        for (std::uint32_t y = 0; y < size; ++y) {
            for (std::uint32_t x = 0; x < size; ++x) {
                const auto coordinate = [size](std::uint32_t i) {
                    return 2 * (static_cast<float>(i) + 0.5F) / static_cast<float>(size) - 1;
                };
                const SCNVector3 color = Studio::light(faceDirection(face, coordinate(x), coordinate(y)), roughness);
                *texel++ = {color.x, color.y, color.z};
            }
        }
    }
    const std::size_t faceBytes = faceTexels * sizeof(float3);
    Texture::PixelBufferDescriptor pixels(
        texels->data(), faceBytes * 6, Texture::Format::RGB, Texture::Type::FLOAT,
        [](void*, std::size_t, void* owner) { delete static_cast<std::vector<float3>*>(owner); }, texels);
    texture.setImage(engine, level, std::move(pixels), Texture::FaceOffsets(faceBytes));
}

Owned<Texture> makeReflections(filament::Engine& engine) {
    auto texture = own(engine, Texture::Builder()
                                   .width(side)
                                   .height(side)
                                   .levels(levels)
                                   .sampler(Texture::Sampler::SAMPLER_CUBEMAP)
                                   .format(Texture::InternalFormat::R11F_G11F_B10F)
                                   .build(engine));
    for (std::uint8_t level = 0; level < levels; ++level) fillLevel(engine, *texture, level);
    return texture;
}

Owned<filament::IndirectLight> makeSurroundings(filament::Engine& engine, const Texture& reflections) {
    float3 harmonics[9];
    const auto computed = Studio::harmonics();
    for (std::size_t i = 0; i < computed.size(); ++i) harmonics[i] = {computed[i].x, computed[i].y, computed[i].z};
    return own(engine, filament::IndirectLight::Builder()
                           .reflections(&reflections)
                           .radiance(3, harmonics)
                           .intensity(surroundingsIntensity)
                           .build(engine));
}

}  // namespace

StudioLight::StudioLight(filament::Engine& engine)
    : engine_(engine),
      reflections_(makeReflections(engine)),
      surroundings_(makeSurroundings(engine, *reflections_)),
      key_(utils::EntityManager::get().create()) {
    const SCNVector3 from = Studio::keyDirection();
    filament::LightManager::Builder(filament::LightManager::Type::DIRECTIONAL)
        .color({1.0F, 0.96F, 0.9F})
        .intensity(keyIntensity)
        .direction({-from.x, -from.y, -from.z})
        .build(engine, key_);
}

StudioLight::~StudioLight() {
    engine_.destroy(key_);
    utils::EntityManager::get().destroy(key_);
}

void StudioLight::setOn(filament::Scene& scene, bool on) {
    if (isOn_ == on) return;
    isOn_ = on;
    scene.setIndirectLight(on ? surroundings_.get() : nullptr);
    if (on)
        scene.addEntity(key_);
    else
        scene.remove(key_);
}

}  // namespace flarebox::detail
