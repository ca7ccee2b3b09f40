#pragma once

#include <Tests/SceneKit/ModelBuilder.h>

#include <Foundation/Values.h>

namespace flarebox::testing {

// A picture of one red and one blue pixel, and one of 8 x 8 green ones.
inline constexpr const char* redBluePNG =
    "iVBORw0KGgoAAAANSUhEUgAAAAIAAAABCAIAAAB7QOjdAAAAD0lEQVQI12P4z8DAwPAfAAcAAf921adgAAAAAElFTkSuQmCC";
inline constexpr const char* greenJPEG =
    "/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDABALDA4MChAODQ4SERATGCgaGBYWGDEjJR0oOjM9PDkzODdASFxOQERXRTc4UG1RV19iZ2hnPk1xeX"
    "BkeFxlZ2P/2wBDARESEhgVGC8aGi9jQjhCY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2P/wAARCAAI"
    "AAgDAREAAhEBAxEB/8QAFAABAAAAAAAAAAAAAAAAAAAAA//EABQQAQAAAAAAAAAAAAAAAAAAAAD/xAAVAQEBAAAAAAAAAAAAAAAAAAAFBv/EAB"
    "QRAQAAAAAAAAAAAAAAAAAAAAD/2gAMAwEAAhEDEQA/ABAJd//Z";

inline std::vector<std::uint8_t> decoded(const char* base64) {
    const NSData data = NSData::dataWithBase64EncodedString(base64);
    std::vector<std::uint8_t> bytes;
    for (const std::byte byte : data.bytes()) bytes.push_back(std::to_integer<std::uint8_t>(byte));
    return bytes;
}

/// A cube of which the test brings mesh and materials.
inline ModelBuilder bare() {
    ModelBuilder model;
    model.set("extensionsUsed", R"(["KHR_materials_unlit","KHR_texture_transform","KHR_mesh_quantization"])");
    addScene(model);
    return model;
}

/// A flat square from -1 to 1 facing the onlooker, of the attributes given besides its positions.
inline void addSquare(ModelBuilder& model, const std::string& attributes, const std::string& more = {}) {
    const auto positions = model.floats({-1, -1, 0, 1, -1, 0, 1, 1, 0, -1, 1, 0}, "VEC3");
    const auto indices = model.shorts({0, 1, 2, 0, 2, 3});
    model.add("meshes", R"({"primitives":[{"material":0,"indices":)" + std::to_string(indices) +
                            R"(,"attributes":{"POSITION":)" + std::to_string(positions) + attributes + "}" + more +
                            "}]}");
}

inline std::string attribute(const char* name, std::size_t accessor) {
    return std::string(",\"") + name + "\":" + std::to_string(accessor);
}

inline std::size_t addTexturePoints(ModelBuilder& model) {
    return model.floats({0, 1, 1, 1, 1, 0, 0, 0}, "VEC2");
}

inline std::string textured(const std::string& texture) {
    return R"({"pbrMetallicRoughness":{"baseColorTexture":{"index":0)" + texture +
           R"(}},"extensions":{"KHR_materials_unlit":{}}})";
}

/// Red on the left, blue on the right, sharply.
inline void addPicture(ModelBuilder& model, const char* base64 = redBluePNG, const char* type = "image/png") {
    const auto view = model.view(decoded(base64));
    model.add("images", R"({"bufferView":)" + std::to_string(view) + R"(,"mimeType":")" + std::string(type) + "\"}");
    model.add("samplers", R"({"magFilter":9728,"minFilter":9728,"wrapS":10497,"wrapT":33071})");
    model.add("textures", R"({"source":0,"sampler":0})");
}

inline ModelBuilder textureModel(const char* base64 = redBluePNG, const char* type = "image/png",
                                 const std::string& more = {}) {
    ModelBuilder model = bare();
    addPicture(model, base64, type);
    model.add("materials", textured(more));
    addSquare(model, attribute("TEXCOORD_0", addTexturePoints(model)));
    return model;
}

template <class Index>
ModelBuilder withIndices(int component) {
    const Cube cube;
    ModelBuilder model = cubeModel();
    const auto view = model.view(std::vector<Index>(cube.indices.begin(), cube.indices.end()));
    model.accessor(view, component, 36, "SCALAR");
    model.replaceIn("meshes", 0, R"("indices":2)", R"("indices":3)");
    return model;
}

inline ModelBuilder interleaved() {
    const Cube cube;
    std::vector<float> both;
    for (std::size_t i = 0; i < 24; ++i) {
        for (const auto* part : {&cube.positions, &cube.normals})
            both.insert(both.end(), part->begin() + static_cast<std::ptrdiff_t>(i * 3),
                        part->begin() + static_cast<std::ptrdiff_t>(i * 3 + 3));
    }
    ModelBuilder model = cubeModel(R"({"pbrMetallicRoughness":{"baseColorFactor":[1,0,0,1],"metallicFactor":0}})");
    const auto view = model.view(both, 24);
    const auto first = model.accessor(view, 5126, 24, "VEC3");
    model.accessor(view, 5126, 24, "VEC3", R"(,"byteOffset":12)");
    model.replaceIn("meshes", 0, R"("POSITION":0,"NORMAL":1)",
                    R"("POSITION":)" + std::to_string(first) + R"(,"NORMAL":)" + std::to_string(first + 1));
    return model;
}

inline ModelBuilder lit(const char* replaced, const char* with) {
    ModelBuilder model = cubeModel(R"({"pbrMetallicRoughness":{"baseColorFactor":[1,0,0,1],"metallicFactor":0}})");
    model.replaceIn("meshes", 0, replaced, with);
    return model;
}

inline ModelBuilder vertexColors(int component, const char* type, std::size_t view, ModelBuilder& model) {
    model.add("materials", unlit("[1,1,1,1]"));
    const auto colors = model.accessor(view, component, 4, type, component == 5126 ? "" : R"(,"normalized":true)");
    addSquare(model, attribute("COLOR_0", colors));
    return model;
}

inline ModelBuilder alpha(const std::string& mode) {
    ModelBuilder model = cubeModel(unlit("[1,0,0,0.3]", mode));
    return model;
}

inline ModelBuilder backFace(bool doubleSided) {
    ModelBuilder model = bare();
    model.add("materials", unlit("[1,0,0,1]", doubleSided ? R"(,"doubleSided":true)" : ""));
    addSquare(model, "");
    model.replaceIn("nodes", 0, R"("mesh":0)", R"("mesh":0,"rotation":[0,1,0,0])");
    return model;
}

inline ModelBuilder sparse(bool hasBase) {
    ModelBuilder model = bare();
    model.add("materials", unlit("[1,0,0,1]"));
    // Without the replaced corners the square would be a line at its lower edge, or a point.
    const auto base = model.view(std::vector<float>{-1, -1, 0, 1, -1, 0, 1, -1, 0, -1, -1, 0});
    const auto places = model.view(hasBase ? std::vector<std::uint16_t>{2, 3} : std::vector<std::uint16_t>{0, 1, 2, 3});
    const auto values = model.view(hasBase ? std::vector<float>{1, 1, 0, -1, 1, 0}
                                           : std::vector<float>{-1, -1, 0, 1, -1, 0, 1, 1, 0, -1, 1, 0});
    const std::string parts = R"("sparse":{"count":)" + std::string(hasBase ? "2" : "4") +
                              R"(,"indices":{"componentType":5123,"bufferView":)" + std::to_string(places) +
                              R"(},"values":{"bufferView":)" + std::to_string(values) + "}}";
    const auto positions = model.add("accessors", (hasBase ? R"({"bufferView":)" + std::to_string(base) + "," : "{") +
                                                      R"("componentType":5126,"count":4,"type":"VEC3",)" + parts + "}");
    const auto indices = model.shorts({0, 1, 2, 0, 2, 3});
    model.add("meshes", R"({"primitives":[{"material":0,"indices":)" + std::to_string(indices) +
                            R"(,"attributes":{"POSITION":)" + std::to_string(positions) + "}}]}");
    return model;
}

inline ModelBuilder quantized() {
    ModelBuilder model = bare();
    model.set("extensionsRequired", R"(["KHR_mesh_quantization"])");
    model.add("materials", unlit("[1,0,0,1]"));
    const auto view = model.view(std::vector<std::int16_t>{-32767, -32767, 0, 0, 32767, -32767, 0, 0,  //
                                                           32767, 32767, 0, 0, -32767, 32767, 0, 0},
                                 8);
    const auto positions = model.accessor(view, 5122, 4, "VEC3", R"(,"normalized":true)");
    const auto indices = model.shorts({0, 1, 2, 0, 2, 3});
    model.add("meshes", R"({"primitives":[{"material":0,"indices":)" + std::to_string(indices) +
                            R"(,"attributes":{"POSITION":)" + std::to_string(positions) + "}}]}");
    return model;
}

/// A square that a single bone carries one and a half to the right.
inline ModelBuilder skinned() {
    ModelBuilder model = bare();
    model.add("materials", unlit("[1,0,0,1]"));
    const auto joints = model.accessor(model.view(std::vector<std::uint8_t>(16, 0)), 5121, 4, "VEC4");
    const auto weights = model.floats({1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}, "VEC4");
    addSquare(model, attribute("JOINTS_0", joints) + attribute("WEIGHTS_0", weights));
    const auto bind = model.floats({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, "MAT4");
    model.add("skins", R"({"joints":[1],"inverseBindMatrices":)" + std::to_string(bind) + "}");
    model.add("nodes", R"({"translation":[1.5,0,0]})");
    model.replaceIn("nodes", 0, R"("mesh":0)", R"("mesh":0,"skin":0)");
    model.replaceIn("scenes", 0, "[0]", "[0,1]");
    return model;
}

/// A square that lies to the left, and with the targets' full weight to the right.
inline ModelBuilder morphed(std::size_t targets) {
    ModelBuilder model = bare();
    model.add("materials", unlit("[1,0,0,1]"));
    std::string list, weights;
    for (std::size_t i = 0; i < targets; ++i) {
        const auto moved = model.floats({1.5, 0, 0, 1.5, 0, 0, 1.5, 0, 0, 1.5, 0, 0}, "VEC3");
        list += (i ? "," : "") + std::string(R"({"POSITION":)") + std::to_string(moved) + "}";
        weights += i ? ",0" : "1";
    }
    addSquare(model, "", R"(,"targets":[)" + list + "]");
    model.replaceIn("meshes", 0, R"({"primitives")", R"({"weights":[)" + weights + R"(],"primitives")");
    return model;
}

/// A square that moves two to the right within two seconds.
inline ModelBuilder animated(const char* interpolation = "LINEAR") {
    ModelBuilder model = bare();
    model.add("materials", unlit("[1,0,0,1]"));
    addSquare(model, "");
    const auto times = model.floats({0, 2}, "SCALAR");
    const bool isCubic = std::string_view(interpolation) == "CUBICSPLINE";
    const auto places = model.floats(isCubic ? std::vector<float>{0, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 2, 0, 0, 0, 0, 0}
                                             : std::vector<float>{0, 0, 0, 2, 0, 0},
                                     "VEC3");
    model.add("animations", R"({"samplers":[{"input":)" + std::to_string(times) + R"(,"output":)" +
                                std::to_string(places) + R"(,"interpolation":")" + interpolation +
                                R"("}],"channels":[{"sampler":0,"target":{"node":0,"path":"translation"}},)" +
                                R"({"sampler":0,"target":{"path":"translation"}}]})");
    return model;
}

}  // namespace flarebox::testing
