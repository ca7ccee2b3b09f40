#include <Tests/SceneKit/PackedModel.h>
#include <Tests/SceneKit/SampleModels.h>
#include <Tests/SceneKit/SharedEngine.h>

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

constexpr int side = 64;

class ModelRendering : public ::testing::Test {
protected:
    void SetUp() override {
        if (!canDraw) GTEST_SKIP() << "this build shows no models";
    }
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
        ScenePicture picture = sharedEngine().draw(frame, failures);
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
         return vertexColors(
             5121, "VEC3",
             model.view(std::vector<std::uint8_t>{255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0}, 4), model);
     },
     redInTheMiddle},
    {"alpha ignored", [] { return alpha(""); }, redInTheMiddle},
    {"alpha masked away", [] { return alpha(R"(,"alphaMode":"MASK")"); }, {{middle, middle, Hue::Nothing}}},
    {"alpha above the cut-off",
     [] { return alpha(R"(,"alphaMode":"MASK","alphaCutoff":0.2)"); },
     {{middle, middle, Hue::Red}}},
    {"lit and masked",
     [] {
         return cubeModel(
             R"({"pbrMetallicRoughness":{"baseColorFactor":[1,0,0,1],"metallicFactor":0},"alphaMode":"MASK"})");
     },
     redInTheMiddle},
    {"alpha of 1 masked",
     [] { return cubeModel(unlit("[1,0,0,1]", R"(,"alphaMode":"MASK")")); },
     {{middle, middle, Hue::Red}}},
    {"alpha blended", [] { return alpha(R"(,"alphaMode":"BLEND")"); }, {{middle, middle, Hue::Red}}},
    {"single-sided from behind", [] { return backFace(false); }, {{middle, middle, Hue::Nothing}}},
    {"double-sided from behind", [] { return backFace(true); }, redInTheMiddle},
    {"PNG texture beside another that is only offered",
     [] {
         ModelBuilder model = textureModel(redBluePNG, "image/png");
         const std::string view = std::to_string(model.view(decoded("UklGRgAA")));
         model.add("images", R"({"bufferView":)" + view + R"(,"mimeType":"image/webp"})");
         model.replaceIn("textures", 0, "\"source\":0", R"("source":0,"extensions":{"EXT_texture_webp":{"source":1}})");
         model.set("extensionsUsed", R"(["EXT_texture_webp"])");
         return model;
     },
     redLeftBlueRight},
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
#ifdef FLAREBOX_HAS_3D
    {"packed", [] { return packed(); }, redInTheMiddle},
    {"packed in two bytes an index", [] { return packed(5123); }, redInTheMiddle},
#endif
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
