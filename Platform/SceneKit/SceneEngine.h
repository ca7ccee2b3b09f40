#pragma once

#include <SceneKit/SCNMath.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace flarebox::detail {

class ModelSource;

/// Everything that one picture of a scene depends on.
struct SceneFrame {
    struct Item {
        std::shared_ptr<const ModelSource> model;
        /// From the model's coordinates to the scene's.
        SCNMatrix4 placement;
    };

    /// In pixels, at least 1.
    int width = 1, height = 1;
    std::vector<Item> items;
    /// Turns everything around the scene's origin.
    SCNMatrix4 orientation;
    /// How much larger than fitted things are shown.
    float zoom = 1;
    /// Seconds on the animations' own clock.
    double time = 0;
    bool hasStudioLight = false;
    bool hasFloorGlow = false;
    /// In the scene, where the floor's glow lies.
    float floor = 0;
};

/// Rows from the top without gaps, each pixel premultiplied 0xAARRGGBB.
struct ScenePicture {
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;
};

/// How the scene's camera sees: from a distance along z, towards the origin.
struct SceneCamera {
    static constexpr double distance = 5;
    /// Of the smaller side of the picture, in degrees.
    static constexpr double fieldOfView = 30;
};

/// What draws scenes. Used, from its making to its end, by one thread, which is not the main one.
class SceneEngine {
public:
    virtual ~SceneEngine() = default;

    /// Draws a frame. What cannot be drawn is left out and told in `failures`, each only once.
    virtual ScenePicture draw(const SceneFrame& frame, std::vector<std::string>& failures) = 0;
    /// Gives back what it holds for models that nobody has any more.
    virtual void releaseUnused() = 0;
};

/// Null, with the reason, where scenes cannot be drawn.
std::unique_ptr<SceneEngine> makeSceneEngine(std::string& unavailableReason);

}  // namespace flarebox::detail
