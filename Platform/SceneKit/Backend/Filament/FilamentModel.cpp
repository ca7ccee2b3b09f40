#include <SceneKit/Backend/Filament/FilamentModel.h>

#include <filament/TransformManager.h>
#include <gltfio/Animator.h>
#include <gltfio/ResourceLoader.h>
#include <math/mat4.h>

#include <cmath>
#include <exception>

namespace flarebox::detail {

namespace {

/// Null, with the reason, when the engine cannot make what the file describes.
gltfio::FilamentAsset* loadAsset(filament::Engine& engine, gltfio::AssetLoader& loader, const ModelContents& contents,
                                 std::string& failure) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(contents.bytes.data());
    gltfio::FilamentAsset* asset =
        loader.createAssetFromBinary(bytes, static_cast<std::uint32_t>(contents.bytes.size()));
    if (!asset) {
        failure = "the renderer refuses it";
        return nullptr;
    }
    gltfio::ResourceLoader resources({&engine, nullptr, true, true});
    if (!resources.loadResources(asset)) {
        loader.destroyAsset(asset);
        failure = "the renderer cannot read its buffers or pictures";
        return nullptr;
    }
    // Has to be asked for before the source is let go.
    asset->getAnimator();
    asset->releaseSourceData();
    return asset;
}

}  // namespace

std::unique_ptr<FilamentModel> FilamentModel::load(filament::Engine& engine, gltfio::AssetLoader& loader,
                                                   const ModelContents& contents, std::string& failure) {
    gltfio::FilamentAsset* asset = nullptr;
    // The library throws where it meets what it takes for impossible. A model lost is better than the host.
    try {
        asset = loadAsset(engine, loader, contents, failure);
    } catch (const std::exception& fault) {
        failure = std::string("the renderer refuses it: ") + fault.what();
    }
    if (!asset) return nullptr;
    return std::unique_ptr<FilamentModel>(new FilamentModel(engine, loader, *asset, contents));
}

FilamentModel::FilamentModel(filament::Engine& engine, gltfio::AssetLoader& loader, gltfio::FilamentAsset& asset,
                             const ModelContents& contents)
    : engine_(engine),
      loader_(loader),
      asset_(asset),
      animations_(contents.animations),
      size_(contents.memory),
      isSkinned_(contents.isSkinned),
      hasCutOuts_(contents.hasCutOuts) {
    animate(0);
}

FilamentModel::~FilamentModel() {
    loader_.destroyAsset(&asset_);
}

void FilamentModel::addTo(filament::Scene& scene) {
    scene.addEntities(asset_.getEntities(), asset_.getEntityCount());
}

void FilamentModel::removeFrom(filament::Scene& scene) {
    scene.removeEntities(asset_.getEntities(), asset_.getEntityCount());
}

void FilamentModel::place(const SCNMatrix4& placement) {
    filament::math::mat4f matrix;
    for (std::size_t i = 0; i < placement.m.size(); ++i) matrix[i / 4][i % 4] = placement.m[i];
    filament::TransformManager& transforms = engine_.getTransformManager();
    transforms.setTransform(transforms.getInstance(asset_.getRoot()), matrix);
}

void FilamentModel::animate(double time) {
    gltfio::Animator* animator = asset_.getAnimator();
    for (const std::size_t animation : animations_) {
        if (animation >= animator->getAnimationCount()) continue;
        const double duration = animator->getAnimationDuration(animation);
        animator->applyAnimation(animation, duration > 0 ? static_cast<float>(std::fmod(time, duration)) : 0);
    }
    if (isSkinned_) animator->updateBoneMatrices();
}

}  // namespace flarebox::detail
