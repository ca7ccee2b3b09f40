#include <SceneKit/Backend/Filament/FilamentEngine.h>

#include <SceneKit/ModelSource.h>

#include <filament/Viewport.h>
#include <utils/EntityManager.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <new>
#include <numbers>
#include <utility>

namespace flarebox::detail {
namespace {

using filament::Engine;
using filament::Texture;
using filament::View;

/// Models beyond this much memory in bytes are let go, those not shown for the longest time first.
constexpr std::size_t modelMemory = std::size_t{256} << 20;

std::uint32_t pixel(const std::uint8_t* rgba) {
    return std::uint32_t{rgba[3]} << 24 | std::uint32_t{rgba[0]} << 16 | std::uint32_t{rgba[1]} << 8 | rgba[2];
}

void convert(const std::vector<std::uint8_t>& rgba, std::vector<std::uint32_t>& pixels) {
    const std::uint8_t* from = rgba.data();
    for (std::uint32_t& to : pixels) {
        to = pixel(from);
        from += 4;
    }
}

gltfio::MaterialProvider* makeMaterials(Engine& engine) {
    gltfio::MaterialProvider* materials = gltfio::createUbershaderLoader(&engine);
    // It hands over a texel on its stack, which should be read before the stack is used anew.
    engine.flushAndWait();
    return materials;
}

}  // namespace

std::unique_ptr<SceneEngine> makeSceneEngine(std::string& unavailableReason) {
    return FilamentEngine::create(unavailableReason);
}

std::unique_ptr<SceneEngine> FilamentEngine::create(std::string& unavailableReason) {
    auto platform = std::make_unique<SurfacelessPlatform>();
    EnginePointer engine(Engine::create(Engine::Backend::OPENGL, platform.get()));
    if (!engine) {
        unavailableReason = std::string("3D models cannot be shown: ") + platform->failure();
        return nullptr;
    }
    return std::unique_ptr<SceneEngine>(new FilamentEngine(std::move(platform), std::move(engine)));
}

FilamentEngine::FilamentEngine(std::unique_ptr<SurfacelessPlatform> platform, EnginePointer engine)
    : platform_(std::move(platform)),
      engine_(std::move(engine)),
      renderer_(own(*engine_, engine_->createRenderer())),
      swapChain_(own(*engine_, engine_->createSwapChain(1, 1))),
      scene_(own(*engine_, engine_->createScene())),
      grading_(own(*engine_, filament::ColorGrading::Builder()
                                 .toneMapping(filament::ColorGrading::ToneMapping::ACES_LEGACY)
                                 .build(*engine_))),
      view_(own(*engine_, engine_->createView())),
      cameraEntity_(utils::EntityManager::get().create()),
      camera_(engine_->createCamera(cameraEntity_)),
      light_(*engine_),
      materials_(makeMaterials(*engine_)),
      loader_(gltfio::AssetLoader::create({engine_.get(), materials_})),
      ground_(std::make_unique<AlphaGround>(*engine_, *materials_)) {
    prepareView();
}

FilamentEngine::~FilamentEngine() {
    for (auto& [source, entry] : entries_) hide(entry);
    entries_.clear();
    ground_->setColor(*scene_, AlphaGround::Color::None);
    ground_ = nullptr;
    materials_->destroyMaterials();
    delete materials_;
    gltfio::AssetLoader::destroy(&loader_);
    view_->setRenderTarget(nullptr);
    engine_->destroyCameraComponent(cameraEntity_);
    utils::EntityManager::get().destroy(cameraEntity_);
}

void FilamentEngine::prepareView() {
    view_->setScene(scene_.get());
    view_->setCamera(camera_);
    view_->setBlendMode(View::BlendMode::TRANSLUCENT);
    view_->setColorGrading(grading_.get());
    view_->setShadowingEnabled(false);
    view_->setSampleCount(4);
    view_->setDithering(View::Dithering::NONE);
    filament::Renderer::ClearOptions clear;
    clear.clear = true;
    renderer_->setClearOptions(clear);
    filament::Renderer::DisplayInfo display;
    display.refreshRate = 0;
    renderer_->setDisplayInfo(display);
}

void FilamentEngine::resize(int width, int height) {
    if (width == width_ && height == height_) return;
    view_->setRenderTarget(nullptr);
    target_.reset();
    width_ = width;
    height_ = height;
    const auto attachment = [&](Texture::InternalFormat format, Texture::Usage usage) {
        return own(*engine_, Texture::Builder()
                                 .width(static_cast<std::uint32_t>(width))
                                 .height(static_cast<std::uint32_t>(height))
                                 .levels(1)
                                 .format(format)
                                 .usage(usage)
                                 .build(*engine_));
    };
    color_ = attachment(Texture::InternalFormat::RGBA8, Texture::Usage::COLOR_ATTACHMENT | Texture::Usage::SAMPLEABLE);
    depth_ = attachment(Texture::InternalFormat::DEPTH24, Texture::Usage::DEPTH_ATTACHMENT);
    target_ = own(*engine_, filament::RenderTarget::Builder()
                                .texture(filament::RenderTarget::COLOR, color_.get())
                                .texture(filament::RenderTarget::DEPTH, depth_.get())
                                .build(*engine_));
    view_->setRenderTarget(target_.get());
    view_->setViewport({0, 0, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)});
}

void FilamentEngine::aim(const SceneFrame& frame) {
    using Camera = filament::Camera;
    // Zooming narrows the lens; coming nearer would run into the model.
    const double half = SceneCamera::fieldOfView / 2 * std::numbers::pi / 180;
    const double angle = 2 * std::atan(std::tan(half) / frame.zoom) * 180 / std::numbers::pi;
    const double aspect = static_cast<double>(frame.width) / frame.height;
    camera_->setProjection(angle, aspect, 1, 4 * SceneCamera::distance,
                           aspect < 1 ? Camera::Fov::HORIZONTAL : Camera::Fov::VERTICAL);
    camera_->lookAt({0, 0, static_cast<float>(SceneCamera::distance)}, {0, 0, 0});
}

ScenePicture FilamentEngine::draw(const SceneFrame& frame, std::vector<std::string>& failures) {
    resize(frame.width, frame.height);
    aim(frame);
    light_.setOn(*scene_, frame.hasStudioLight);
    show(frame, failures);
    ScenePicture picture = renderOverGround();
    if (frame.hasFloorGlow) glow_.layBeneath(picture, frame);
    return picture;
}

void FilamentEngine::show(const SceneFrame& frame, std::vector<std::string>& failures) {
    std::vector<FilamentModel*> wanted;
    for (const SceneFrame::Item& item : frame.items) {
        FilamentModel* model = modelFor(item, failures);
        if (!model) continue;
        model->place(frame.orientation * item.placement);
        model->animate(frame.time);
        wanted.push_back(model);
    }
    for (auto& [source, entry] : entries_) {
        const bool isWanted = entry.model && std::ranges::find(wanted, entry.model.get()) != wanted.end();
        if (!isWanted) hide(entry);
        if (isWanted && !std::exchange(entry.isShown, true)) entry.model->addTo(*scene_);
    }
    hasCutOuts_ = std::ranges::any_of(wanted, &FilamentModel::hasCutOuts);
    makeRoom();
}

void FilamentEngine::hide(Entry& entry) {
    if (std::exchange(entry.isShown, false)) entry.model->removeFrom(*scene_);
}

FilamentModel* FilamentEngine::modelFor(const SceneFrame::Item& item, std::vector<std::string>& failures) {
    Entry& entry = entries_[item.model.get()];
    entry.lastUse = ++uses_;
    if (entry.source.lock() == item.model) return entry.model.get();

    // A new source may lie where a former one lay.
    hide(entry);
    entry.source = item.model;
    entry.model = nullptr;
    std::string failure;
    try {
        if (const auto contents = readModelContents(item.model->path(), failure))
            entry.model = FilamentModel::load(*engine_, *loader_, *contents, failure);
    } catch (const std::bad_alloc&) {
        failure = "there is not enough memory for it";
    }
    if (!entry.model) {
        item.model->setBroken();
        failures.push_back(item.model->path() + ": " + failure);
    }
    return entry.model.get();
}

void FilamentEngine::makeRoom() {
    std::size_t used = 0;
    for (const auto& [source, entry] : entries_) used += entry.model ? entry.model->size() : 0;
    while (used > modelMemory) {
        auto oldest = entries_.end();
        for (auto each = entries_.begin(); each != entries_.end(); ++each) {
            const bool isCandidate = each->second.model && !each->second.isShown;
            if (isCandidate && (oldest == entries_.end() || each->second.lastUse < oldest->second.lastUse))
                oldest = each;
        }
        if (oldest == entries_.end()) return;
        used -= oldest->second.model->size();
        entries_.erase(oldest);
    }
}

void FilamentEngine::releaseUnused() {
    for (auto each = entries_.begin(); each != entries_.end();) {
        const bool isUnused = each->second.source.expired();
        if (isUnused) hide(each->second);
        each = isUnused ? entries_.erase(each) : std::next(each);
    }
    engine_->flushAndWait();
}

ScenePicture FilamentEngine::renderOverGround() {
    using Color = AlphaGround::Color;
    ground_->setColor(*scene_, hasCutOuts_ ? Color::Black : Color::None);
    ScenePicture picture = renderAndRead();
    if (!hasCutOuts_) return picture;
    ground_->setColor(*scene_, Color::White);
    AlphaGround::recover(picture, renderAndRead());
    return picture;
}

ScenePicture FilamentEngine::renderAndRead() {
    ScenePicture picture{width_, height_, {}};
    picture.pixels.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
    std::vector<std::uint8_t> rgba(picture.pixels.size() * 4);
    if (!renderer_->beginFrame(swapChain_.get())) {
        // The engine asks for a frame to be skipped when it has fallen behind; waiting lets it catch up.
        engine_->flushAndWait();
        if (!renderer_->beginFrame(swapChain_.get())) return picture;
    }
    renderer_->render(view_.get());
    filament::backend::PixelBufferDescriptor buffer(rgba.data(), rgba.size(), Texture::Format::RGBA,
                                                    Texture::Type::UBYTE);
    renderer_->readPixels(target_.get(), 0, 0, static_cast<std::uint32_t>(width_), static_cast<std::uint32_t>(height_),
                          std::move(buffer));
    renderer_->endFrame();
    engine_->flushAndWait();
    convert(rgba, picture.pixels);
    return picture;
}

}  // namespace flarebox::detail
