#include <Tests/SceneKit/ModelBuilder.h>

#include <Foundation/Values.h>
#include <SceneKit/ModelFile.h>
#include <SceneKit/ModelSource.h>
#include <SceneKit/SceneEngine.h>
#include <Tests/Support/TemporaryDirectory.h>

#include <gtest/gtest.h>

#include <cmath>

namespace flarebox::testing {
namespace {

using detail::SceneFrame;
using detail::ScenePicture;

// A picture of one red and one blue pixel, and one of 8 x 8 green ones.
constexpr const char* redBluePNG =
    "iVBORw0KGgoAAAANSUhEUgAAAAIAAAABCAIAAAB7QOjdAAAAD0lEQVQI12P4z8DAwPAfAAcAAf921adgAAAAAElFTkSuQmCC";
constexpr const char* greenJPEG =
    "/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDABALDA4MChAODQ4SERATGCgaGBYWGDEjJR0oOjM9PDkzODdASFxOQERXRTc4UG1RV19iZ2hnPk1xeX"
"BkeFxlZ2P/2wBDARESEhgVGC8aGi9jQjhCY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2NjY2P/wAARCAAI"
"AAgDAREAAhEBAxEB/8QAFAABAAAAAAAAAAAAAAAAAAAAA//EABQQAQAAAAAAAAAAAAAAAAAAAAD/xAAVAQEBAAAAAAAAAAAAAAAAAAAFBv/EAB"
"QRAQAAAAAAAAAAAAAAAAAAAAD/2gAMAwEAAhEDEQA/ABAJd//Z";

constexpr int side = 64;

std::vector<std::uint8_t> decoded(const char* base64) {
    const NSData data = NSData::dataWithBase64EncodedString(base64);
    std::vector<std::uint8_t> bytes;
    for (const std::byte byte : data.bytes()) bytes.push_back(std::to_integer<std::uint8_t>(byte));
    return bytes;
}

/// One engine for all tests of the process: making one takes long.
detail::SceneEngine& engine() {
    static std::string reason;
    static const auto shared = detail::makeSceneEngine(reason);
    if (!shared) {
        std::fprintf(stderr, "%s\n", reason.c_str());
        std::abort();
    }
    return *shared;
}

class ModelRendering : public ::testing::Test {
protected:
    ScenePicture draw(const std::string& file, double time = 0, float yaw = 0) {
        const std::string path = files_.write("model", file);
        std::string failure;
        const auto summary = detail::readModelSummary(path, failure);
        EXPECT_TRUE(summary) << failure;
        if (!summary) return {};
        SceneFrame frame;
        frame.width = frame.height = side;
        frame.hasStudioLight = true;
        frame.time = time;
        frame.orientation = makeRotationY(yaw);
        const auto source = std::make_shared<const detail::ModelSource>(path, summary->bounds, summary->isAnimated);
        frame.items.push_back({source, makePlacement({}, {0.6F, 0.6F, 0.6F})});
        std::vector<std::string> failures;
        ScenePicture picture = engine().draw(frame, failures);
        for (const std::string& each : failures) ADD_FAILURE() << each;
        return picture;
    }

    TemporaryDirectory files_;
};

std::uint32_t at(const ScenePicture& picture, int x, int y) {
    return picture.pixels.at(static_cast<std::size_t>(y * picture.width + x));
}

enum class Hue { Nothing, Red, Green, Blue, White };

/// What the eye would call the colour: the tone curve moves numbers, and never one colour to another.
Hue hue(std::uint32_t pixel) {
    const auto alpha = pixel >> 24, red = pixel >> 16 & 255, green = pixel >> 8 & 255, blue = pixel & 255;
    if (alpha < 30) return Hue::Nothing;
    const auto most = std::max({red, green, blue}), half = most / 2;
    if (red > half && green > half && blue > half) return Hue::White;
    return red == most ? Hue::Red : green == most ? Hue::Green : Hue::Blue;
}

std::ostream& operator<<(std::ostream& out, Hue hue) {
    constexpr const char* names[] = {"nothing", "red", "green", "blue", "white"};
    return out << names[static_cast<int>(hue)];
}

struct Expected {
    int x, y;
    Hue hue;
};

struct Variant {
    const char* name;
    ModelBuilder (*build)();
    std::vector<Expected> expected;
    double time = 0;
    float yaw = 0;
};

constexpr int middle = side / 2;
const std::vector<Expected> redInTheMiddle = {{middle, middle, Hue::Red}, {2, 2, Hue::Nothing}};

/// A cube of which the test brings mesh and materials.
ModelBuilder bare() {
    ModelBuilder model;
    model.set("extensionsUsed", R"(["KHR_materials_unlit","KHR_texture_transform","KHR_mesh_quantization"])");
    addScene(model);
    return model;
}

/// A flat square from -1 to 1 facing the onlooker, of the attributes given besides its positions.
void addSquare(ModelBuilder& model, const std::string& attributes, const std::string& more = {}) {
    const auto positions = model.floats({-1, -1, 0, 1, -1, 0, 1, 1, 0, -1, 1, 0}, "VEC3");
    const auto indices = model.shorts({0, 1, 2, 0, 2, 3});
    model.add("meshes", R"({"primitives":[{"material":0,"indices":)" + std::to_string(indices) +
                            R"(,"attributes":{"POSITION":)" + std::to_string(positions) + attributes + "}" + more +
                            "}]}");
}

std::string attribute(const char* name, std::size_t accessor) {
    return std::string(",\"") + name + "\":" + std::to_string(accessor);
}

std::size_t addTexturePoints(ModelBuilder& model) { return model.floats({0, 1, 1, 1, 1, 0, 0, 0}, "VEC2"); }

std::string textured(const std::string& texture) {
    return R"({"pbrMetallicRoughness":{"baseColorTexture":{"index":0)" + texture +
           R"(}},"extensions":{"KHR_materials_unlit":{}}})";
}

/// Red on the left, blue on the right, sharply.
void addPicture(ModelBuilder& model, const char* base64 = redBluePNG, const char* type = "image/png") {
    const auto view = model.view(decoded(base64));
    model.add("images",
              R"({"bufferView":)" + std::to_string(view) + R"(,"mimeType":")" + std::string(type) + "\"}");
    model.add("samplers", R"({"magFilter":9728,"minFilter":9728,"wrapS":10497,"wrapT":33071})");
    model.add("textures", R"({"source":0,"sampler":0})");
}

ModelBuilder textureModel(const char* base64, const char* type, const std::string& more = {}) {
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

ModelBuilder interleaved() {
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

ModelBuilder lit(const char* replaced, const char* with) {
    ModelBuilder model = cubeModel(R"({"pbrMetallicRoughness":{"baseColorFactor":[1,0,0,1],"metallicFactor":0}})");
    model.replaceIn("meshes", 0, replaced, with);
    return model;
}

ModelBuilder vertexColors(int component, const char* type, std::size_t view, ModelBuilder& model) {
    model.add("materials", unlit("[1,1,1,1]"));
    const auto colors = model.accessor(view, component, 4, type, component == 5126 ? "" : R"(,"normalized":true)");
    addSquare(model, attribute("COLOR_0", colors));
    return model;
}

ModelBuilder alpha(const std::string& mode) {
    ModelBuilder model = cubeModel(unlit("[1,0,0,0.3]", mode));
    return model;
}

ModelBuilder backFace(bool doubleSided) {
    ModelBuilder model = bare();
    model.add("materials", unlit("[1,0,0,1]", doubleSided ? R"(,"doubleSided":true)" : ""));
    addSquare(model, "");
    model.replaceIn("nodes", 0, R"("mesh":0)", R"("mesh":0,"rotation":[0,1,0,0])");
    return model;
}

ModelBuilder sparse(bool hasBase) {
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

ModelBuilder quantized() {
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
ModelBuilder skinned() {
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
ModelBuilder morphed(std::size_t targets) {
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
ModelBuilder animated(const char* interpolation = "LINEAR") {
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

const std::vector<Expected> redLeftBlueRight = {{middle - 8, middle, Hue::Red}, {middle + 8, middle, Hue::Blue}};
const std::vector<Expected> redRight = {{middle + 20, middle, Hue::Red}, {middle - 8, middle, Hue::Nothing}};

const Variant variants[] = {
    {"plain", [] { return cubeModel(); }, redInTheMiddle},
    {"8-bit indices", [] { return withIndices<std::uint8_t>(5121); }, redInTheMiddle},
    {"32-bit indices", [] { return withIndices<std::uint32_t>(5125); }, redInTheMiddle},
    {"no indices",
     [] {
         ModelBuilder model = bare();
         model.add("materials", unlit("[1,0,0,1]"));
         model.floats({-1, -1, 0, 1, -1, 0, 0, 1, 0}, "VEC3");
         model.add("meshes", R"({"primitives":[{"material":0,"attributes":{"POSITION":0}}]})");
         return model;
     },
     redInTheMiddle},
    {"interleaved and lit", interleaved, redInTheMiddle},
    {"lit without normals", [] { return lit(R"(,"NORMAL":1)", ""); }, redInTheMiddle},
    {"without a material", [] { return lit(R"(,"material":0)", ""); }, {{middle, middle, Hue::White}}},
    {"lit metal without textures",
     [] { return cubeModel(R"({"pbrMetallicRoughness":{"baseColorFactor":[1,0,0,1],"roughnessFactor":0.6}})"); },
     redInTheMiddle},
    {"glossy",
     [] {
         ModelBuilder model = cubeModel(
             R"({"extensions":{"KHR_materials_pbrSpecularGlossiness":{"diffuseFactor":[1,0,0,1],"specularFactor":[0,0,0]}}})");
         model.set("extensionsUsed", R"(["KHR_materials_pbrSpecularGlossiness"])");
         return model;
     },
     redInTheMiddle},
    {"coated",
     [] {
         ModelBuilder model = cubeModel(R"({"pbrMetallicRoughness":{"baseColorFactor":[1,0,0,1],"metallicFactor":0},)"
                                        R"("extensions":{"KHR_materials_clearcoat":{"clearcoatFactor":0.2}}})");
         model.set("extensionsUsed", R"(["KHR_materials_clearcoat"])");
         return model;
     },
     redInTheMiddle},
    {"vertex colours in floats",
     [] {
         ModelBuilder model = bare();
         return vertexColors(5126, "VEC4",
                             model.view(std::vector<float>{1, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 1, 1, 0, 0, 1}), model);
     },
     {{middle - 14, middle, Hue::Red}, {middle + 14, middle, Hue::Blue}}},
    {"vertex colours in bytes",
     [] {
         ModelBuilder model = bare();
         return vertexColors(5121, "VEC3",
                             model.view(std::vector<std::uint8_t>{255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0},
                                        4),
                             model);
     },
     redInTheMiddle},
    {"alpha ignored", [] { return alpha(""); }, redInTheMiddle},
    {"alpha masked away", [] { return alpha(R"(,"alphaMode":"MASK")"); }, {{middle, middle, Hue::Nothing}}},
    {"alpha above the cut-off",
     [] { return alpha(R"(,"alphaMode":"MASK","alphaCutoff":0.2)"); },
     {{middle, middle, Hue::Red}}},
    {"Xmask lit", [] { return cubeModel(R"({"pbrMetallicRoughness":{"baseColorFactor":[1,0,0,1],"metallicFactor":0},"alphaMode":"MASK"})"); }, {{middle, middle, Hue::Red}}},
    {"Xmask lit .3", [] { return cubeModel(R"({"pbrMetallicRoughness":{"baseColorFactor":[1,0,0,0.3],"metallicFactor":0},"alphaMode":"MASK","alphaCutoff":0.2})"); }, {{middle, middle, Hue::Red}}},
    {"Xmask unlit 1", [] { return cubeModel(unlit("[1,0,0,1]",R"(,"alphaMode":"MASK")")); }, {{middle, middle, Hue::Red}}},
    {"alpha blended", [] { return alpha(R"(,"alphaMode":"BLEND")"); }, {{middle, middle, Hue::Red}}},
    {"single-sided from behind", [] { return backFace(false); }, {{middle, middle, Hue::Nothing}}},
    {"double-sided from behind", [] { return backFace(true); }, redInTheMiddle},
    {"PNG texture", [] { return textureModel(redBluePNG, "image/png"); }, redLeftBlueRight},
    {"JPEG texture", [] { return textureModel(greenJPEG, "image/jpeg"); }, {{middle, middle, Hue::Green}}},
    {"moved texture",
     [] {
         return textureModel(redBluePNG, "image/png", R"(,"extensions":{"KHR_texture_transform":{"offset":[0.5,0]}})");
     },
     {{middle - 8, middle, Hue::Blue}, {middle + 8, middle, Hue::Red}}},
    {"second set of texture points",
     [] {
         ModelBuilder model = bare();
         addPicture(model);
         model.add("materials", textured(R"(,"texCoord":1)"));
         const auto first = model.floats({0, 0, 0, 0, 0, 0, 0, 0}, "VEC2"), second = addTexturePoints(model);
         addSquare(model, attribute("TEXCOORD_0", first) + attribute("TEXCOORD_1", second));
         return model;
     },
     redLeftBlueRight},
    {"texture without texture points",
     [] {
         ModelBuilder model = bare();
         addPicture(model);
         model.add("materials", textured(""));
         addSquare(model, "");
         return model;
     },
     redInTheMiddle},
    {"texture points in shorts",
     [] {
         ModelBuilder model = bare();
         addPicture(model);
         model.add("materials", textured(""));
         const auto view = model.view(std::vector<std::uint16_t>{0, 65535, 65535, 65535, 65535, 0, 0, 0}, 4);
         addSquare(model, attribute("TEXCOORD_0", model.accessor(view, 5123, 4, "VEC2", R"(,"normalized":true)")));
         return model;
     },
     redLeftBlueRight},
    {"the second of two scenes",
     [] {
         ModelBuilder model = cubeModel(unlit("[0,0,1,1]"));
         model.add("materials", unlit("[1,0,0,1]"));
         model.add("meshes", R"({"primitives":[{"attributes":{"POSITION":0},"indices":2,"material":1}]})");
         model.add("nodes", R"({"mesh":1})");
         model.add("scenes", R"({"nodes":[1]})");
         model.set("scene", "1");
         return model;
     },
     redInTheMiddle},
    {"nested nodes",
     [] {
         ModelBuilder model = cubeModel();
         model.add("nodes", R"({"children":[2],"translation":[1.5,0,0]})");
         model.add("nodes", R"({"mesh":0,"scale":[0.5,0.5,0.5]})");
         model.replaceIn("scenes", 0, "[0]", "[1]");
         return model;
     },
     redRight},
    {"sparse", [] { return sparse(true); }, redInTheMiddle},
    {"sparse without a base", [] { return sparse(false); }, redInTheMiddle},
    {"quantised", quantized, redInTheMiddle},
    {"skinned", skinned, redRight},
    {"skinned in a scene that is not shown",
     [] {
         ModelBuilder model = skinned();
         model.add("meshes", R"({"primitives":[{"attributes":{"POSITION":2},"indices":3,"material":0}]})");
         model.add("nodes", R"({"mesh":1})");
         model.add("scenes", R"({"nodes":[2]})");
         model.set("scene", "1");
         return model;
     },
     redInTheMiddle},
    {"morphed", [] { return morphed(1); }, redRight},
    {"morphed by one of six targets", [] { return morphed(6); }, redRight},
    {"animated, at the start", [] { return animated(); }, {{middle, middle, Hue::Red}}},
    {"animated, later", [] { return animated(); }, redRight, 1.6},
    {"animated, started over", [] { return animated(); }, {{middle, middle, Hue::Red}}, 2.2},
    {"animated in steps", [] { return animated("STEP"); }, {{middle, middle, Hue::Red}}, 1.6},
    {"animated along a curve", [] { return animated("CUBICSPLINE"); }, redRight, 1.6},
    {"turned", [] { return backFace(false); }, redInTheMiddle, 0, 3.1415F},
};

TEST_F(ModelRendering, ShowsWhatExportersWrite) {
    for (const Variant& variant : variants) {
        SCOPED_TRACE(variant.name);
        const ScenePicture picture = draw(variant.build().file(), variant.time, variant.yaw);
        if (picture.pixels.empty()) continue;
        for (const auto& [x, y, expected] : variant.expected)
            EXPECT_EQ(hue(at(picture, x, y)), expected) << x << ", " << y << ": " << std::hex << at(picture, x, y);
    }
}

}  // namespace
}  // namespace flarebox::testing
