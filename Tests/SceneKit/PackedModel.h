#pragma once

#include <Tests/SceneKit/SampleModels.h>

#ifdef FLAREBOX_HAS_3D
#include <draco/compression/encode.h>
#include <draco/mesh/triangle_soup_mesh_builder.h>

namespace flarebox::testing {

/// The cube with its mesh packed; the accessors of the rest say what it holds.
inline ModelBuilder packed(int indexType = 5125) {
    const Cube cube;
    draco::TriangleSoupMeshBuilder soup;
    soup.Start(12);
    const auto positions = soup.AddAttribute(draco::GeometryAttribute::POSITION, 3, draco::DT_FLOAT32);
    const auto corner = [&](std::uint32_t i) { return cube.positions.data() + cube.indices[i] * std::size_t{3}; };
    for (std::uint32_t i = 0; i < 12; ++i)
        soup.SetAttributeValuesForFace(positions, draco::FaceIndex(i), corner(i * 3), corner(i * 3 + 1),
                                       corner(i * 3 + 2));
    const auto mesh = soup.Finalize();
    draco::Encoder encoder;
    draco::EncoderBuffer buffer;
    encoder.SetAttributeQuantization(draco::GeometryAttribute::POSITION, 12);
    if (!encoder.EncodeMeshToBuffer(*mesh, &buffer).ok()) return {};

    ModelBuilder model;
    model.set("extensionsUsed", R"(["KHR_materials_unlit","KHR_draco_mesh_compression"])");
    model.set("extensionsRequired", R"(["KHR_draco_mesh_compression"])");
    model.view(std::vector<char>(buffer.data(), buffer.data() + buffer.size()));
    model.add("accessors", R"({"componentType":5126,"type":"VEC3","count":)" + std::to_string(mesh->num_points()) +
                               std::string(cubeBounds) + "}");
    model.add("accessors", R"({"componentType":)" + std::to_string(indexType) + R"(,"type":"SCALAR","count":36})");
    model.add("materials", unlit("[1,0,0,1]"));
    model.add("meshes", R"({"primitives":[{"material":0,"attributes":{"POSITION":0},"indices":1,"extensions":)"
                        R"({"KHR_draco_mesh_compression":{"bufferView":0,"attributes":{"POSITION":)" +
                            std::to_string(mesh->attribute(positions)->unique_id()) + "}}}}]}");
    addScene(model);
    return model;
}

}  // namespace flarebox::testing
#endif
