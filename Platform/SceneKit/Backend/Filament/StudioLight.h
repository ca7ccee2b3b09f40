#pragma once

#include <SceneKit/Backend/Filament/Owned.h>

#include <filament/IndirectLight.h>
#include <filament/Scene.h>
#include <filament/Texture.h>
#include <utils/Entity.h>

namespace flarebox::detail {

/// The light of a photographer's studio: large soft lamps around the product and a key light from above. It stays where
/// it is when the product turns.
class StudioLight {
public:
    explicit StudioLight(filament::Engine& engine);
    ~StudioLight();
    StudioLight(const StudioLight&) = delete;
    StudioLight& operator=(const StudioLight&) = delete;

    void setOn(filament::Scene& scene, bool on);

private:
    filament::Engine& engine_;
    Owned<filament::Texture> reflections_;
    Owned<filament::IndirectLight> surroundings_;
    utils::Entity key_;
    bool isOn_ = false;
};

}  // namespace flarebox::detail
