#include <SceneKit/Backend/Filament/AlphaGround.h>

#include <SceneKit/SceneEngine.h>

#include <filament/RenderableManager.h>
#include <math/vec4.h>
#include <utils/EntityManager.h>

#include <algorithm>

namespace flarebox::detail {
namespace {

using filament::IndexBuffer;
using filament::VertexAttribute;
using filament::VertexBuffer;
using filament::math::float4;

// Behind any model, and reaching beyond a picture of any shape.
constexpr float depth = -2 * static_cast<float>(SceneCamera::distance), reach = 1e5F;
constexpr float4 corners[] = {{-reach, -reach, depth, 1}, {3 * reach, -reach, depth, 1}, {-reach, 3 * reach, depth, 1}};
constexpr std::uint16_t order[] = {0, 1, 2};

Owned<VertexBuffer> makeCorners(filament::Engine& engine) {
    VertexBuffer::Builder builder;
    builder.vertexCount(3).bufferCount(1);
    // The material wants to be given all of these, whether it looks at them or not.
    for (const auto attribute :
         {VertexAttribute::POSITION, VertexAttribute::COLOR, VertexAttribute::UV0, VertexAttribute::UV1})
        builder.attribute(attribute, 0, VertexBuffer::AttributeType::FLOAT4);
    auto buffer = own(engine, builder.build(engine));
    buffer->setBufferAt(engine, 0, VertexBuffer::BufferDescriptor(corners, sizeof corners));
    return buffer;
}

Owned<IndexBuffer> makeOrder(filament::Engine& engine) {
    auto buffer =
        own(engine, IndexBuffer::Builder().indexCount(3).bufferType(IndexBuffer::IndexType::USHORT).build(engine));
    buffer->setBuffer(engine, IndexBuffer::BufferDescriptor(order, sizeof order));
    return buffer;
}

Owned<filament::MaterialInstance> makePaint(filament::Engine& engine, gltfio::MaterialProvider& materials) {
    gltfio::MaterialKey key{};
    key.unlit = true;
    gltfio::UvMap uses{};
    auto paint = own(engine, materials.createMaterialInstance(&key, &uses, "ground"));
    paint->setDepthWrite(false);
    return paint;
}

}  // namespace

AlphaGround::AlphaGround(filament::Engine& engine, gltfio::MaterialProvider& materials)
    : engine_(engine),
      corners_(makeCorners(engine)),
      order_(makeOrder(engine)),
      paint_(makePaint(engine, materials)),
      ground_(utils::EntityManager::get().create()) {
    filament::RenderableManager::Builder(1)
        .geometry(0, filament::RenderableManager::PrimitiveType::TRIANGLES, corners_.get(), order_.get())
        .material(0, paint_.get())
        .culling(false)
        .castShadows(false)
        .receiveShadows(false)
        .priority(0)
        .build(engine, ground_);
}

AlphaGround::~AlphaGround() {
    engine_.destroy(ground_);
    utils::EntityManager::get().destroy(ground_);
}

void AlphaGround::setColor(filament::Scene& scene, Color color) {
    if (color == color_) return;
    const float light = color == Color::White ? 1 : 0;
    paint_->setParameter("baseColorFactor", float4{light, light, light, 1});
    if (color == Color::None)
        scene.remove(ground_);
    else if (color_ == Color::None)
        scene.addEntity(ground_);
    color_ = color;
}

void AlphaGround::recover(ScenePicture& beforeBlack, const ScenePicture& beforeWhite) {
    const auto green = [](std::uint32_t pixel) { return static_cast<int>(pixel >> 8 & 255); };
    // White is less than 255 after the tone curve; it is what shows where there is nothing.
    int white = 128;
    for (std::size_t i = 0; i < beforeBlack.pixels.size(); ++i)
        white = std::max(white, green(beforeWhite.pixels[i]) - green(beforeBlack.pixels[i]));
    for (std::size_t i = 0; i < beforeBlack.pixels.size(); ++i) {
        std::uint32_t& pixel = beforeBlack.pixels[i];
        const int through = std::clamp(green(beforeWhite.pixels[i]) - green(pixel), 0, white);
        const auto brightest = std::max({pixel >> 16 & 255, pixel >> 8 & 255, pixel & 255});
        const auto alpha = std::max(static_cast<std::uint32_t>(255 - std::min(255, through * 260 / white)), brightest);
        pixel = (pixel & 0x00FFFFFF) | alpha << 24;
    }
}

}  // namespace flarebox::detail
