#include <SceneKit/ModelDescription.h>

#include <Foundation/NSJSONSerialization.h>
#include <SceneKit/CheckedObject.h>
#include <SceneKit/ModelFile.h>

#include <algorithm>
#include <array>

namespace flarebox::detail {
namespace {

// A model of a product that needs more is none; each bounds what the engine has to make.
constexpr std::size_t mostThings = 65'536, mostNodes = 8'192, mostMeshes = 2'048, mostPrimitives = 1'024,
                      mostMaterials = 512, mostImages = 256, mostAnimations = 256, mostJoints = 256, mostTargets = 256,
                      mostScenes = 1'024, mostChannels = 16'384;
constexpr std::size_t mostElements = 1 << 26;
/// Of a name that goes into the log.
constexpr std::size_t longestKind = 64;

constexpr std::string_view transformExtension = "KHR_texture_transform";
constexpr std::string_view unlitExtension = "KHR_materials_unlit";
constexpr std::string_view glossExtension = "KHR_materials_pbrSpecularGlossiness";
constexpr std::string_view coatExtension = "KHR_materials_clearcoat";
constexpr std::string_view dracoExtension = "KHR_draco_mesh_compression";
/// Those that the clean description may name.
constexpr std::string_view passedExtensions[] = {transformExtension, unlitExtension, glossExtension, coatExtension};
/// Those that need nothing of the renderer: meshes are unpacked here, and the studio brings its own light.
constexpr std::string_view resolvedExtensions[] = {dracoExtension, "KHR_mesh_quantization", "KHR_lights_punctual"};

/// Others may be there, of everybody's own making; the renderer would not know them.
constexpr std::string_view knownAttributes[] = {"POSITION",   "NORMAL",  "TANGENT",  "TEXCOORD_0",
                                                "TEXCOORD_1", "COLOR_0", "JOINTS_0", "WEIGHTS_0"};

bool holds(std::span<const std::string_view> names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

/// Reads a description part by part, in the order in which the parts refer to each other.
class Reader {
public:
    Reader(const Value& description, Refusal& refusal)
        : refusal_(refusal),
          root_(description, refusal),
          nodes_(description.as<NSDictionary>().objectForKey("nodes").as<NSArray>().count()) {}

    ModelDescription read();

private:
    void readAsset();
    void readExtensions();
    void readBuffers();
    void readViews();
    void readAccessors();
    void readSparse(CheckedObject& object, ModelAccessor& accessor);
    void readImages();
    void readTextures();
    void readMaterials();
    void readMaterial(CheckedObject& material);
    void readTexture(CheckedObject& owner, std::string_view key, std::string_view factor = {});
    void readMetal(CheckedObject& material);
    void readMaterialExtensions(CheckedObject& material);
    void readMeshes();
    ModelPrimitive readPrimitive(CheckedObject& object);
    void readPacking(CheckedObject& object, ModelPrimitive& primitive);
    void readSkins();
    void readNodes();
    SCNMatrix4 readTransform(CheckedObject& node);
    void readScenes();
    void readAnimations();

    Refusal& refusal_;
    CheckedObject root_;
    ModelDescription model_;
    /// Joints and children are nodes that have not been read yet.
    std::size_t nodes_;
    std::size_t textures_ = 0, materials_ = 0, samplers_ = 0, channels_ = 0;
};

ModelDescription Reader::read() {
    readAsset();
    readExtensions();
    readBuffers();
    readViews();
    readAccessors();
    readImages();
    readTextures();
    readMaterials();
    readMeshes();
    readSkins();
    readNodes();
    readScenes();
    readAnimations();
    if (refusal_.isRefused()) return {};
    const NSDictionary clean = root_.clean();
    model_.clean.assign(clean.entries().begin(), clean.entries().end());
    return std::move(model_);
}

void Reader::readAsset() {
    const bool found = root_.object("asset", [](CheckedObject& asset) {
        const std::string_view version = asset.peekText("version");
        if (!version.starts_with("2.")) asset.refuse("version", "is not 2");
        asset.put("version", "2.0");
    });
    if (!found) root_.refuse("asset", "is missing");
}

void Reader::readExtensions() {
    std::vector<Value> passed;
    for (const std::string_view name : root_.peekTexts("extensionsRequired")) {
        if (!holds(passedExtensions, name) && !holds(resolvedExtensions, name)) {
            refusal_.refuse("it needs the extension " + std::string(name) + ", which is not supported");
            return;
        }
    }
    for (const std::string_view name : root_.peekTexts("extensionsUsed")) {
        if (holds(passedExtensions, name)) passed.emplace_back(NSString(name));
    }
    if (!passed.empty()) root_.put("extensionsUsed", NSArray::arrayWithValues(passed));
}

void Reader::readBuffers() {
    root_.objects("buffers", 1, [&](CheckedObject& buffer, std::size_t) {
        if (buffer.has("uri")) buffer.refuse("uri", "lies outside the file");
        model_.bufferLength = buffer.integer("byteLength", 1, largestModelFile, 0);
    });
}

void Reader::readViews() {
    root_.objects("bufferViews", mostThings, [&](CheckedObject& object, std::size_t) {
        ModelBufferView view;
        if (object.requiredIndex("buffer", model_.bufferLength ? 1 : 0) != 0) return;
        view.offset = object.integer("byteOffset", 0, model_.bufferLength, 0);
        view.length = object.integer("byteLength", 1, model_.bufferLength - view.offset, 0);
        view.stride = object.integer("byteStride", 4, 252, 0);
        if (view.length == 0) object.refuse("byteLength", "is missing");
        if (view.stride % 4 != 0) object.refuse("byteStride", "is no multiple of 4");
        if (object.has("extensions")) {
            object.object("extensions", [](CheckedObject& extensions) {
                if (extensions.has("EXT_meshopt_compression"))
                    extensions.refuse("EXT_meshopt_compression", "is not supported");
            });
        }
        model_.views.push_back(view);
    });
}

ComponentType readComponent(CheckedObject& object) {
    const std::size_t type = object.integer("componentType", 5120, 5126, 0);
    if (type == 0 || type == 5124) object.refuse("componentType", "is nothing known");
    return static_cast<ComponentType>(type);
}

void Reader::readAccessors() {
    root_.objects("accessors", mostThings, [&](CheckedObject& object, std::size_t) {
        ModelAccessor accessor;
        accessor.view = object.index("bufferView", model_.views.size());
        accessor.offset = object.integer("byteOffset", 0, largestModelFile, 0);
        accessor.component = readComponent(object);
        accessor.count = object.integer("count", 1, mostElements, 0);
        if (accessor.count == 0) object.refuse("count", "is missing");
        accessor.type = object.text("type", {"", "SCALAR", "VEC2", "VEC3", "VEC4", "MAT2", "MAT3", "MAT4"});
        if (accessor.type.empty()) object.refuse("type", "is missing");
        accessor.isNormalized = object.flag("normalized");
        accessor.min = object.numbers("min", {accessor.width()});
        accessor.max = object.numbers("max", {accessor.width()});
        readSparse(object, accessor);
        model_.accessors.push_back(std::move(accessor));
    });
}

void Reader::readSparse(CheckedObject& object, ModelAccessor& accessor) {
    object.object("sparse", [&](CheckedObject& sparse) {
        ModelAccessor::Sparse result;
        result.count = sparse.integer("count", 1, accessor.count, 0);
        if (result.count == 0) sparse.refuse("count", "is missing");
        const bool hasIndices = sparse.object("indices", [&](CheckedObject& indices) {
            result.indexView = indices.requiredIndex("bufferView", model_.views.size());
            result.indexOffset = indices.integer("byteOffset", 0, model_.bufferLength, 0);
            result.indexType = readComponent(indices);
        });
        const bool hasValues = sparse.object("values", [&](CheckedObject& values) {
            result.valueView = values.requiredIndex("bufferView", model_.views.size());
            result.valueOffset = values.integer("byteOffset", 0, model_.bufferLength, 0);
        });
        if (!hasIndices || !hasValues) sparse.refuse({}, "lacks its indices or values");
        accessor.sparse = result;
    });
}

void Reader::readImages() {
    root_.objects("images", mostImages, [&](CheckedObject& image, std::size_t) {
        if (image.has("uri")) image.refuse("uri", "lies outside the file");
        const std::size_t view = image.requiredIndex("bufferView", model_.views.size());
        const std::string_view type = image.peekText("mimeType");
        if (type.empty()) image.refuse("mimeType", "is missing");
        const bool isKnown = type == "image/png" || type == "image/jpeg";
        if (isKnown) image.put("mimeType", NSString(type));
        model_.images.push_back({view, std::string(isKnown ? "" : type.substr(0, longestKind))});
    });
}

void Reader::readTextures() {
    root_.objects("samplers", mostMaterials, [&](CheckedObject& sampler, std::size_t) {
        constexpr std::size_t filters[] = {9728, 9729, 9984, 9985, 9986, 9987}, wraps[] = {10497, 33071, 33648};
        const auto check = [&](std::string_view key, std::span<const std::size_t> known) {
            const std::size_t value = sampler.integer(key, 0, 65'535, known[0]);
            if (std::ranges::find(known, value) == known.end()) sampler.refuse(key, "is nothing known");
        };
        check("minFilter", filters);
        check("magFilter", std::span(filters).first(2));
        check("wrapS", wraps);
        check("wrapT", wraps);
        ++samplers_;
    });
    root_.objects("textures", mostMaterials, [&](CheckedObject& texture, std::size_t) {
        if (!texture.has("source")) texture.refuse("source", "is missing, or in a format that is not supported");
        const std::size_t source = texture.requiredIndex("source", model_.images.size());
        if (refusal_.isRefused()) return;
        ModelImage& image = model_.images[source];
        if (!image.otherKind.empty()) texture.refuse("source", "is of " + image.otherKind + ", which is not supported");
        image.isUsed = true;
        texture.index("sampler", samplers_);
        ++textures_;
    });
}

void Reader::readTexture(CheckedObject& owner, std::string_view key, std::string_view factor) {
    owner.object(key, [&](CheckedObject& texture) {
        texture.requiredIndex("index", textures_);
        texture.integer("texCoord", 0, 1, 0);
        if (!factor.empty()) texture.number(factor);
        if (!texture.has("extensions")) return;
        texture.object("extensions", [](CheckedObject& extensions) {
            extensions.object(transformExtension, [](CheckedObject& transform) {
                transform.numbers("offset", {2});
                transform.number("rotation");
                transform.numbers("scale", {2});
                transform.integer("texCoord", 0, 1, 0);
            });
        });
    });
}

void Reader::readMetal(CheckedObject& material) {
    material.object("pbrMetallicRoughness", [this](CheckedObject& metal) {
        metal.numbers("baseColorFactor", {4});
        readTexture(metal, "baseColorTexture");
        metal.number("metallicFactor");
        metal.number("roughnessFactor");
        readTexture(metal, "metallicRoughnessTexture");
    });
}

void Reader::readMaterialExtensions(CheckedObject& material) {
    if (!material.has("extensions")) return;
    material.object("extensions", [this](CheckedObject& extensions) {
        extensions.object(unlitExtension, [](CheckedObject&) {});
        extensions.object(glossExtension, [this](CheckedObject& gloss) {
            gloss.numbers("diffuseFactor", {4});
            readTexture(gloss, "diffuseTexture");
            gloss.numbers("specularFactor", {3});
            gloss.number("glossinessFactor");
            readTexture(gloss, "specularGlossinessTexture");
        });
        extensions.object(coatExtension, [this](CheckedObject& coat) {
            coat.number("clearcoatFactor");
            readTexture(coat, "clearcoatTexture");
            coat.number("clearcoatRoughnessFactor");
            readTexture(coat, "clearcoatRoughnessTexture");
            readTexture(coat, "clearcoatNormalTexture", "scale");
        });
    });
}

void Reader::readMaterial(CheckedObject& material) {
    readMetal(material);
    readTexture(material, "normalTexture", "scale");
    readTexture(material, "occlusionTexture", "strength");
    readTexture(material, "emissiveTexture");
    material.numbers("emissiveFactor", {3});
    model_.hasCutOuts |= material.text("alphaMode", {"OPAQUE", "MASK", "BLEND"}) == "MASK";
    material.number("alphaCutoff");
    material.flag("doubleSided");
    readMaterialExtensions(material);
}

void Reader::readMaterials() {
    root_.objects("materials", mostMaterials, [this](CheckedObject& material, std::size_t) {
        readMaterial(material);
        ++materials_;
    });
}

std::string_view unsupportedMode(std::size_t mode) {
    constexpr std::string_view names[] = {"", "", "line loops", "line strips", "", "triangle strips", "triangle fans"};
    return names[mode];
}

ModelPrimitive Reader::readPrimitive(CheckedObject& object) {
    ModelPrimitive primitive;
    object.object("attributes", [&](CheckedObject& attributes) {
        primitive.attributes = attributes.namedIndices(knownAttributes, model_.accessors.size());
    });
    if (!primitive.attribute("POSITION")) object.refuse("attributes", "has no positions");
    primitive.indices = object.index("indices", model_.accessors.size());
    object.index("material", materials_);
    primitive.mode = object.integer("mode", 0, 6, 4);
    if (const std::string_view mode = unsupportedMode(primitive.mode); !mode.empty())
        object.refuse("mode", "is " + std::string(mode) + ", which are not supported");
    if (object.has("extensions")) readPacking(object, primitive);
    object.objects("targets", mostTargets, [&](CheckedObject& target, std::size_t) {
        primitive.targets.push_back(target.namedIndices(std::span(knownAttributes).first(3), model_.accessors.size()));
    });
    return primitive;
}

void Reader::readPacking(CheckedObject& object, ModelPrimitive& primitive) {
    object.object("extensions", [&](CheckedObject& extensions) {
        primitive.isDraco = extensions.object(dracoExtension, [&](CheckedObject& draco) {
            primitive.dracoView = draco.requiredIndex("bufferView", model_.views.size());
            draco.object("attributes", [&](CheckedObject& attributes) {
                primitive.dracoAttributes = attributes.namedIndices(knownAttributes, mostThings);
            });
        });
    });
    object.drop("extensions");
    if (primitive.isDraco && (!primitive.indices || primitive.mode != 4))
        object.refuse({}, "is packed and no triangles");
}

void Reader::readMeshes() {
    std::size_t primitives = 0;
    root_.objects("meshes", mostMeshes, [&](CheckedObject& mesh, std::size_t) {
        auto& result = model_.meshes.emplace_back();
        mesh.objects("primitives", mostPrimitives, [&](CheckedObject& object, std::size_t) {
            result.push_back(readPrimitive(object));
            ++primitives;
        });
        mesh.numbers("weights", 1, mostTargets);
        if (result.empty()) mesh.refuse("primitives", "is missing");
    });
    if (primitives > mostPrimitives) refusal_.refuse("it has more than " + std::to_string(mostPrimitives) + " parts");
}

void Reader::readSkins() {
    root_.objects("skins", mostMeshes, [this](CheckedObject& object, std::size_t) {
        ModelSkin skin;
        skin.joints = object.indices("joints", nodes_, mostJoints);
        skin.inverseBindMatrices = object.index("inverseBindMatrices", model_.accessors.size());
        object.index("skeleton", nodes_);
        if (skin.joints.empty()) object.refuse("joints", "is missing");
        model_.skins.push_back(std::move(skin));
    });
}

SCNMatrix4 Reader::readTransform(CheckedObject& node) {
    SCNMatrix4 transform;
    const std::vector<float> matrix = node.numbers("matrix", {16});
    const std::vector<float> translation = node.numbers("translation", {3}), rotation = node.numbers("rotation", {4}),
                             scale = node.numbers("scale", {3});
    if (!matrix.empty()) {
        std::ranges::copy(matrix, transform.m.begin());
        return transform;
    }
    const auto vector = [](const std::vector<float>& v, SCNVector3 otherwise) {
        return v.empty() ? otherwise : SCNVector3{v[0], v[1], v[2]};
    };
    std::array<float, 4> quaternion{0, 0, 0, 1};
    std::ranges::copy(rotation, quaternion.begin());
    return makeTransform(vector(translation, {}), quaternion, vector(scale, {1, 1, 1}));
}

void Reader::readNodes() {
    root_.objects("nodes", mostNodes, [this](CheckedObject& object, std::size_t) {
        ModelNode node;
        node.children = object.indices("children", nodes_, mostNodes);
        node.mesh = object.index("mesh", model_.meshes.size());
        node.skin = object.index("skin", model_.skins.size());
        node.transform = readTransform(object);
        object.numbers("weights", 1, mostTargets);
        model_.nodes.push_back(std::move(node));
    });
}

void Reader::readScenes() {
    std::vector<std::vector<std::size_t>> scenes;
    root_.objects("scenes", mostScenes, [&](CheckedObject& scene, std::size_t) {
        scenes.push_back(scene.indices("nodes", model_.nodes.size(), mostNodes));
    });
    const std::size_t shown = root_.integer("scene", 0, scenes.empty() ? 0 : scenes.size() - 1, 0);
    if (scenes.empty()) root_.refuse("scenes", "is missing: there is nothing to show");
    if (shown < scenes.size()) model_.roots = scenes[shown];
    if (model_.roots.empty()) root_.refuse("scenes", "shows nothing");
}

void Reader::readAnimations() {
    root_.objects("animations", mostAnimations, [this](CheckedObject& object, std::size_t) {
        ModelAnimation animation;
        object.objects("samplers", mostChannels, [&](CheckedObject& sampler, std::size_t) {
            const std::size_t input = sampler.requiredIndex("input", model_.accessors.size()),
                              output = sampler.requiredIndex("output", model_.accessors.size());
            const auto interpolation = sampler.text("interpolation", {"LINEAR", "STEP", "CUBICSPLINE"});
            animation.samplers.push_back({input, output, std::string(interpolation)});
        });
        object.objects("channels", mostChannels, [&](CheckedObject& object_, std::size_t) {
            ModelAnimation::Channel channel;
            channel.sampler = object_.requiredIndex("sampler", animation.samplers.size());
            const bool hasTarget = object_.object("target", [&](CheckedObject& target) {
                channel.node = target.index("node", model_.nodes.size());
                channel.path = target.text("path", {"", "translation", "rotation", "scale", "weights"});
                if (channel.path.empty()) target.refuse("path", "is missing");
            });
            if (!hasTarget) object_.refuse("target", "is missing");
            animation.channels.push_back(std::move(channel));
        });
        channels_ += animation.channels.size();
        model_.animations.push_back(std::move(animation));
    });
    if (channels_ > mostChannels)
        refusal_.refuse("its animations have more than " + std::to_string(mostChannels) + " channels");
}

}  // namespace

std::optional<ModelDescription> readDescription(std::string_view json, std::string& failure) {
    Ref<NSError> error;
    const Value description = NSJSONSerialization::JSONObjectWithText(json, NSJSONReadingStrict, &error);
    if (!description) {
        failure = "its description is no JSON: " + error->localizedDescription();
        return std::nullopt;
    }
    Refusal refusal;
    ModelDescription model = Reader(description, refusal).read();
    if (!refusal.isRefused()) refusal.refuse(findFault(model));
    if (!refusal.isRefused()) {
        keepWhatIsShown(model);
        return model;
    }
    failure = refusal.reason();
    return std::nullopt;
}

}  // namespace flarebox::detail
