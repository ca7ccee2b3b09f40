#pragma once

#include <SceneKit/Backend/Filament/Owned.h>
#include <SceneKit/SceneEngine.h>

#include <filament/IndexBuffer.h>
#include <filament/MaterialInstance.h>
#include <filament/Scene.h>
#include <filament/VertexBuffer.h>
#include <gltfio/MaterialProvider.h>
#include <utils/Entity.h>

namespace flarebox::detail {

/// A plain ground behind everything. Cut-out materials leave the alpha that they find, so that a picture of them has
/// none: before a black and a white ground in turn, what does not change is what they cover.
class AlphaGround {
public:
    AlphaGround(filament::Engine& engine, gltfio::MaterialProvider& materials);
    /// The material provider's materials are still there.
    ~AlphaGround();
    AlphaGround(const AlphaGround&) = delete;
    AlphaGround& operator=(const AlphaGround&) = delete;

    enum class Color { None, Black, White };
    void setColor(filament::Scene& scene, Color color);
    /// Gives the picture before black the alpha that the one before white tells.
    static void recover(ScenePicture& beforeBlack, const ScenePicture& beforeWhite);

private:
    filament::Engine& engine_;
    Owned<filament::VertexBuffer> corners_;
    Owned<filament::IndexBuffer> order_;
    Owned<filament::MaterialInstance> paint_;
    utils::Entity ground_;
    Color color_ = Color::None;
};

}  // namespace flarebox::detail
