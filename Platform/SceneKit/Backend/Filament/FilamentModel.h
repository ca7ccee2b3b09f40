#pragma once

#include <SceneKit/ModelFile.h>
#include <SceneKit/SCNMath.h>

#include <filament/Engine.h>
#include <filament/Scene.h>
#include <gltfio/AssetLoader.h>

#include <memory>
#include <string>
#include <vector>

namespace flarebox::detail {

/// A model in the engine's memory. Goes before the loader that made it.
class FilamentModel {
public:
    /// Null, with the reason, when the engine does not take the model.
    static std::unique_ptr<FilamentModel> load(filament::Engine& engine, gltfio::AssetLoader& loader,
                                               const ModelContents& contents, std::string& failure);
    ~FilamentModel();
    FilamentModel(const FilamentModel&) = delete;
    FilamentModel& operator=(const FilamentModel&) = delete;

    void addTo(filament::Scene& scene);
    void removeFrom(filament::Scene& scene);
    void place(const SCNMatrix4& placement);
    /// Shows the moment of all animations played, each starting over at its end. Seconds.
    void animate(double time);
    /// About how much memory it takes, in bytes.
    std::size_t size() const { return size_; }
    /// Whether it has materials with an alpha that is either all or nothing.
    bool hasCutOuts() const { return hasCutOuts_; }

private:
    FilamentModel(filament::Engine& engine, gltfio::AssetLoader& loader, gltfio::FilamentAsset& asset,
                  const ModelContents& contents);

    filament::Engine& engine_;
    gltfio::AssetLoader& loader_;
    gltfio::FilamentAsset& asset_;
    std::vector<std::size_t> animations_;
    std::size_t size_;
    bool isSkinned_, hasCutOuts_;
};

}  // namespace flarebox::detail
