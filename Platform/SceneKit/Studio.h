#pragma once

#include <SceneKit/SCNMath.h>

#include <array>

namespace flarebox::detail {

/// The light of the default scene, as formulas: what falls in from each direction, also as a rough surface sees it, so
/// that no picture of surroundings has to be shipped and filtered.
struct Studio {
    /// Light from a direction (of any length), averaged over what a surface of that roughness (0 to 1) mirrors at once.
    static SCNVector3 light(SCNVector3 direction, float roughness);
    /// The light's first nine spherical harmonics, in the real basis whose odd orders are negative.
    static std::array<SCNVector3, 9> harmonics();
    /// Where the key light stands, as a unit vector.
    static SCNVector3 keyDirection();
    /// The perceptual roughness that a level of a reflection map stands for.
    static float roughnessOfLevel(int level, int levels);
};

}  // namespace flarebox::detail
