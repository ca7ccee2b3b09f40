#include <SceneKit/ModelDescription.h>

#include <algorithm>
#include <initializer_list>

namespace flarebox::detail {
namespace {

/// Deeper trees of nodes are nobody's model.
constexpr std::size_t deepestNode = 256;

std::string named(std::string_view list, std::size_t index, std::string_view what) {
    return std::string(list) + '[' + std::to_string(index) + "] " + std::string(what);
}

/// Whether so many elements, the first at `offset`, lie within the view.
bool fits(const ModelBufferView& view, std::size_t offset, std::size_t count, std::size_t elementSize) {
    const std::size_t stride = view.stride ? view.stride : elementSize;
    if (elementSize > view.length || offset > view.length - elementSize) return false;
    return (count - 1) <= (view.length - elementSize - offset) / stride;
}

std::string accessorFault(const ModelDescription& model, const ModelAccessor& accessor) {
    const std::size_t unit = componentSize(accessor.component);
    if (accessor.view) {
        const ModelBufferView& view = model.views[*accessor.view];
        if (view.stride && view.stride < accessor.elementSize()) return "has elements longer than their distance";
        if (!fits(view, accessor.offset, accessor.count, accessor.elementSize()))
            return "reaches beyond its buffer view";
        if ((view.offset + accessor.offset) % unit != 0) return "is not aligned";
    }
    if (accessor.type.starts_with("MAT") && accessor.component != ComponentType::Float)
        return "has matrices of whole numbers";
    if (!accessor.sparse) return {};

    const ModelAccessor::Sparse& sparse = *accessor.sparse;
    const auto indexSize = componentSize(sparse.indexType);
    const bool isIndexType = sparse.indexType == ComponentType::UByte || sparse.indexType == ComponentType::UShort ||
                             sparse.indexType == ComponentType::UInt;
    if (!isIndexType) return "has sparse indices that are no whole numbers";
    ModelBufferView indices = model.views[sparse.indexView], values = model.views[sparse.valueView];
    if (indices.stride || values.stride) return "has sparse parts that do not lie side by side";
    if (!fits(indices, sparse.indexOffset, sparse.count, indexSize) ||
        !fits(values, sparse.valueOffset, sparse.count, accessor.elementSize()))
        return "has sparse parts that reach beyond their buffer view";
    return {};
}

/// What an attribute may consist of.
struct AttributeForm {
    std::string_view name;
    std::initializer_list<std::string_view> types;
    std::initializer_list<ComponentType> components;
};

using enum ComponentType;
const AttributeForm forms[] = {
    {"POSITION", {"VEC3"}, {Float, Byte, UByte, Short, UShort}},
    {"NORMAL", {"VEC3"}, {Float, Byte, Short}},
    {"TANGENT", {"VEC4"}, {Float, Byte, Short}},
    {"TEXCOORD_0", {"VEC2"}, {Float, UByte, UShort, Byte, Short}},
    {"TEXCOORD_1", {"VEC2"}, {Float, UByte, UShort, Byte, Short}},
    {"COLOR_0", {"VEC3", "VEC4"}, {Float, UByte, UShort}},
    {"JOINTS_0", {"VEC4"}, {UByte, UShort}},
    {"WEIGHTS_0", {"VEC4"}, {Float, UByte, UShort}},
};

bool hasForm(const ModelAccessor& accessor, std::string_view name) {
    const auto* const form = std::ranges::find(forms, name, &AttributeForm::name);
    return std::ranges::find(form->types, accessor.type) != form->types.end() &&
           std::ranges::find(form->components, accessor.component) != form->components.end();
}

std::string primitiveFault(const ModelDescription& model, const ModelPrimitive& primitive) {
    const std::size_t vertices = model.accessors[*primitive.attribute("POSITION")].count;
    for (const auto& [name, index] : primitive.attributes) {
        const ModelAccessor& accessor = model.accessors[index];
        if (!hasForm(accessor, name)) return name + " is of a type that it cannot have";
        if (accessor.count != vertices) return name + " has another count than the positions";
    }
    for (const auto& target : primitive.targets) {
        for (const auto& [name, index] : target) {
            const ModelAccessor& accessor = model.accessors[index];
            const bool isGood =
                accessor.type == "VEC3" && accessor.count == vertices &&
                (accessor.component == Float || accessor.component == Byte || accessor.component == Short);
            if (!isGood) return "a target's " + name + " does not fit the mesh";
        }
    }
    if (primitive.attribute("JOINTS_0").has_value() != primitive.attribute("WEIGHTS_0").has_value())
        return "has joints without weights, or the reverse";
    if (!primitive.indices) return {};
    const ModelAccessor& indices = model.accessors[*primitive.indices];
    const bool isIndexType = indices.component == UByte || indices.component == UShort || indices.component == UInt;
    if (indices.type != "SCALAR" || !isIndexType) return "has indices of a type that they cannot have";
    return {};
}

std::string meshFault(const ModelDescription& model) {
    for (std::size_t i = 0; i < model.meshes.size(); ++i) {
        for (const ModelPrimitive& primitive : model.meshes[i]) {
            if (std::string fault = primitiveFault(model, primitive); !fault.empty()) return named("meshes", i, fault);
            if (primitive.targets.size() != model.meshes[i][0].targets.size())
                return named("meshes", i, "has parts with different counts of targets");
        }
    }
    return {};
}

/// Every node has at most one parent and there is a way down to it from a node without one: a forest, in other words.
std::string nodeFault(const ModelDescription& model) {
    std::vector<bool> hasParent(model.nodes.size());
    for (std::size_t i = 0; i < model.nodes.size(); ++i) {
        for (const std::size_t child : model.nodes[i].children) {
            if (hasParent[child]) return named("nodes", child, "has more than one parent");
            hasParent[child] = true;
        }
    }
    std::vector<std::size_t> level;
    for (std::size_t i = 0; i < model.nodes.size(); ++i) {
        if (!hasParent[i]) level.push_back(i);
    }
    std::size_t reached = level.size();
    for (std::size_t depth = 0; !level.empty(); ++depth) {
        if (depth > deepestNode) return "its nodes are nested too deeply";
        std::vector<std::size_t> below;
        for (const std::size_t i : level)
            below.insert(below.end(), model.nodes[i].children.begin(), model.nodes[i].children.end());
        reached += below.size();
        level = std::move(below);
    }
    if (reached != model.nodes.size()) return "its nodes lie below themselves";

    std::vector<bool> isShown(model.nodes.size());
    for (const std::size_t root : model.roots) {
        if (hasParent[root] || isShown[root]) return named("nodes", root, "is no root of the scene");
        isShown[root] = true;
    }
    return {};
}

std::string skinFault(const ModelDescription& model) {
    for (std::size_t i = 0; i < model.skins.size(); ++i) {
        const ModelSkin& skin = model.skins[i];
        if (!skin.inverseBindMatrices) continue;
        const ModelAccessor& matrices = model.accessors[*skin.inverseBindMatrices];
        if (matrices.type != "MAT4" || matrices.count < skin.joints.size())
            return named("skins", i, "has not one matrix for every joint");
    }
    for (std::size_t i = 0; i < model.nodes.size(); ++i) {
        const ModelNode& node = model.nodes[i];
        if (node.skin && !node.mesh) return named("nodes", i, "has a skin without a mesh");
    }
    std::vector<bool> isShown(model.nodes.size());
    const std::vector<std::size_t> shown = shownNodes(model);
    for (const std::size_t i : shown) isShown[i] = true;
    for (const std::size_t i : shown) {
        const auto skin = model.nodes[i].skin;
        const auto isOutside = [&](std::size_t joint) { return !isShown[joint]; };
        if (skin && std::ranges::any_of(model.skins[*skin].joints, isOutside))
            return named("nodes", i, "is moved by a joint outside its scene");
    }
    return {};
}

/// Numbers that an animation needs for each moment.
std::size_t valuesPerMoment(const ModelDescription& model, const ModelAnimation::Channel& channel) {
    if (channel.path != "weights") return 1;
    const auto& mesh = channel.node ? model.nodes[*channel.node].mesh : std::nullopt;
    return mesh ? model.meshes[*mesh][0].targets.size() : 0;
}

std::string channelFault(const ModelDescription& model, const ModelAnimation& animation,
                         const ModelAnimation::Channel& channel) {
    const ModelAnimation::Sampler& sampler = animation.samplers[channel.sampler];
    const ModelAccessor &input = model.accessors[sampler.input], &output = model.accessors[sampler.output];
    if (input.type != "SCALAR" || input.component != Float) return "has times that are no numbers";
    const std::string_view type = channel.path == "rotation" ? "VEC4" : channel.path == "weights" ? "SCALAR" : "VEC3";
    if (output.type != type || output.component == UInt) return "has values of a type that they cannot have";
    const bool mayBeWhole = channel.path == "rotation" || channel.path == "weights";
    if (output.component != Float && !(mayBeWhole && output.isNormalized)) return "has values that are no numbers";
    const std::uint64_t values = valuesPerMoment(model, channel);
    if (channel.node && (values == 0 || output.count != input.count * values * (sampler.isCubic() ? 3 : 1)))
        return "has another count of values than of times";
    return {};
}

std::string animationFault(const ModelDescription& model) {
    for (std::size_t i = 0; i < model.animations.size(); ++i) {
        const ModelAnimation& animation = model.animations[i];
        if (animation.channels.empty()) return named("animations", i, "moves nothing");
        for (const auto& channel : animation.channels) {
            if (std::string fault = channelFault(model, animation, channel); !fault.empty())
                return named("animations", i, fault);
        }
    }
    return {};
}

}  // namespace

std::string findFault(const ModelDescription& model) {
    for (std::size_t i = 0; i < model.accessors.size(); ++i) {
        if (std::string fault = accessorFault(model, model.accessors[i]); !fault.empty())
            return named("accessors", i, fault);
    }
    for (const auto& check : {meshFault, nodeFault, skinFault, animationFault}) {
        if (std::string fault = check(model); !fault.empty()) return fault;
    }
    return {};
}

}  // namespace flarebox::detail
