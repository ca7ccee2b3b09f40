#pragma once

#include <SceneKit/Backend/Filament/AlphaGround.h>
#include <SceneKit/Backend/Filament/FilamentModel.h>
#include <SceneKit/Backend/Filament/Owned.h>
#include <SceneKit/Backend/Filament/StudioLight.h>
#include <SceneKit/Backend/Filament/SurfacelessPlatform.h>
#include <SceneKit/FloorGlow.h>
#include <SceneKit/SceneEngine.h>

#include <filament/Camera.h>
#include <filament/ColorGrading.h>
#include <filament/RenderTarget.h>
#include <filament/Renderer.h>
#include <filament/SwapChain.h>
#include <filament/View.h>
#include <gltfio/MaterialProvider.h>

#include <map>

namespace flarebox::detail {

/// Draws scenes with Filament into a texture of its own and reads that back.
class FilamentEngine final : public SceneEngine {
public:
    static std::unique_ptr<SceneEngine> create(std::string& unavailableReason);
    ~FilamentEngine() override;

    ScenePicture draw(const SceneFrame& frame, std::vector<std::string>& failures) override;
    void releaseUnused() override;

private:
    /// A model as it is known here; one that could not be loaded stays known, without contents, as long as its source.
    struct Entry {
        std::weak_ptr<const ModelSource> source;
        std::unique_ptr<FilamentModel> model;
        std::uint64_t lastUse = 0;
        bool isShown = false;
    };
    using Entries = std::map<const ModelSource*, Entry>;

    struct EngineCloser {
        void operator()(filament::Engine* engine) const { filament::Engine::destroy(engine); }
    };
    using EnginePointer = std::unique_ptr<filament::Engine, EngineCloser>;

    FilamentEngine(std::unique_ptr<SurfacelessPlatform> platform, EnginePointer engine);

    void prepareView();
    void resize(int width, int height);
    void aim(const SceneFrame& frame);
    void show(const SceneFrame& frame, std::vector<std::string>& failures);
    FilamentModel* modelFor(const SceneFrame::Item& item, std::vector<std::string>& failures);
    void hide(Entry& entry);
    void makeRoom();
    ScenePicture renderOverGround();
    ScenePicture renderAndRead();

    // In the order in which they come to be: the engine outlives all that is its own, the platform outlives the engine.
    std::unique_ptr<SurfacelessPlatform> platform_;
    EnginePointer engine_;
    Owned<filament::Renderer> renderer_;
    Owned<filament::SwapChain> swapChain_;
    Owned<filament::Scene> scene_;
    Owned<filament::ColorGrading> grading_;
    Owned<filament::View> view_;
    utils::Entity cameraEntity_;
    filament::Camera* camera_ = nullptr;
    StudioLight light_;
    gltfio::MaterialProvider* materials_ = nullptr;
    gltfio::AssetLoader* loader_ = nullptr;
    std::unique_ptr<AlphaGround> ground_;
    Owned<filament::Texture> color_, depth_;
    Owned<filament::RenderTarget> target_;
    int width_ = 0, height_ = 0;
    bool hasCutOuts_ = false;
    FloorGlow glow_;
    Entries entries_;
    std::uint64_t uses_ = 0;
};

}  // namespace flarebox::detail
