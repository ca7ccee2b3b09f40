#include <SceneKit/ModelDescription.h>

#include <algorithm>
#include <set>
#include <utility>

namespace flarebox::detail {
namespace {

SCNBoundingBox boundsOf(const ModelAccessor& positions) {
    if (positions.min.size() != 3 || positions.max.size() != 3) return SCNBoundingBox::empty();
    const float unit = positions.isNormalized ? 1 / largestValue(positions.component) : 1;
    const auto corner = [unit](const std::vector<float>& v) {
        return SCNVector3{v[0] * unit, v[1] * unit, v[2] * unit};
    };
    return {corner(positions.min), corner(positions.max)};
}

std::vector<SCNMatrix4> worldTransforms(const ModelDescription& model) {
    std::vector<SCNMatrix4> world(model.nodes.size());
    std::vector<std::pair<std::size_t, SCNMatrix4>> pending;
    for (const std::size_t root : model.roots) pending.emplace_back(root, SCNMatrix4());
    while (!pending.empty()) {
        const auto [node, above] = pending.back();
        pending.pop_back();
        world[node] = above * model.nodes[node].transform;
        for (const std::size_t child : model.nodes[node].children) pending.emplace_back(child, world[node]);
    }
    return world;
}

}  // namespace

std::size_t componentSize(ComponentType type) {
    switch (type) {
        case ComponentType::Byte:
        case ComponentType::UByte:
            return 1;
        case ComponentType::Short:
        case ComponentType::UShort:
            return 2;
        default:
            return 4;
    }
}

float largestValue(ComponentType type) {
    switch (type) {
        case ComponentType::Byte:
            return 127;
        case ComponentType::UByte:
            return 255;
        case ComponentType::Short:
            return 32767;
        case ComponentType::UShort:
            return 65535;
        default:
            return 1;
    }
}

std::size_t ModelAccessor::width() const {
    constexpr std::pair<std::string_view, std::size_t> widths[] = {{"SCALAR", 1}, {"VEC2", 2}, {"VEC3", 3}, {"VEC4", 4},
                                                                   {"MAT2", 4},   {"MAT3", 9}, {"MAT4", 16}};
    for (const auto& [name, width] : widths) {
        if (name == type) return width;
    }
    return 0;
}

std::optional<std::size_t> ModelPrimitive::attribute(std::string_view name) const {
    for (const auto& [each, accessor] : attributes) {
        if (each == name) return accessor;
    }
    return std::nullopt;
}

std::vector<std::size_t> shownNodes(const ModelDescription& model) {
    std::vector<std::size_t> shown = model.roots;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const auto& children = model.nodes[shown[i]].children;
        shown.insert(shown.end(), children.begin(), children.end());
    }
    return shown;
}

namespace {

void hideNodes(ModelDescription& model, const std::vector<bool>& isShown) {
    const auto nodes = std::ranges::find_if(
        model.clean, [](const NSDictionary::Entry& entry) { return entry.first.as<NSString>() == "nodes"; });
    if (nodes == model.clean.end()) return;
    const auto descriptions = nodes->second.as<NSArray>();
    std::vector<Value> kept;
    for (std::size_t i = 0; i < isShown.size(); ++i)
        kept.emplace_back(isShown[i] ? descriptions.objectAtIndex(i) : Value(NSDictionary::dictionaryWithEntries({})));
    nodes->second = NSArray::arrayWithValues(std::move(kept));
}

}  // namespace

void keepWhatIsShown(ModelDescription& model) {
    std::vector<bool> isShown(model.nodes.size());
    for (const std::size_t node : shownNodes(model)) isShown[node] = true;
    hideNodes(model, isShown);
    for (ModelSkin& skin : model.skins) {
        // Others are numbered after it.
        if (!std::ranges::all_of(skin.joints, [&](std::size_t joint) { return isShown[joint]; }))
            skin = {{model.roots[0]}, std::nullopt};
    }
    for (ModelAnimation& animation : model.animations)
        std::erase_if(animation.channels,
                      [&](const auto& channel) { return !channel.node || !isShown[*channel.node]; });
    std::erase_if(model.animations, [](const ModelAnimation& animation) { return animation.channels.empty(); });
}

SCNBoundingBox modelBounds(const ModelDescription& model, const ReadMatrix& read) {
    const std::vector<SCNMatrix4> world = worldTransforms(model);
    SCNBoundingBox box = SCNBoundingBox::empty();
    for (const std::size_t i : shownNodes(model)) {
        const ModelNode& node = model.nodes[i];
        if (!node.mesh) continue;
        SCNMatrix4 place = world[i];
        if (node.skin) {
            // Bones carry the mesh along, wherever its own node is: at rest all of them put it in the same place.
            const ModelSkin& skin = model.skins[*node.skin];
            place = world[skin.joints[0]];
            if (skin.inverseBindMatrices) place = place * read(model.accessors[*skin.inverseBindMatrices], 0);
        }
        for (const ModelPrimitive& primitive : model.meshes[*node.mesh])
            box.include(boundsOf(model.accessors[*primitive.attribute("POSITION")]).transformedBy(place));
    }
    return box;
}

std::vector<std::size_t> compatibleAnimations(const ModelDescription& model) {
    std::set<std::pair<std::size_t, std::string_view>> moved;
    std::vector<std::size_t> result;
    for (std::size_t i = 0; i < model.animations.size(); ++i) {
        const auto& channels = model.animations[i].channels;
        const bool isFree = std::ranges::none_of(channels, [&](const ModelAnimation::Channel& channel) {
            return moved.contains({*channel.node, channel.path});
        });
        if (!isFree) continue;
        for (const auto& channel : channels) moved.emplace(*channel.node, channel.path);
        result.push_back(i);
    }
    return result;
}

}  // namespace flarebox::detail
