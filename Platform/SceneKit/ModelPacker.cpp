#include <SceneKit/ModelPacker.h>

#include <Foundation/NSJSONSerialization.h>
#include <SceneKit/PackedMesh.h>
#include <UIKit/ImageHeader.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace flarebox::detail {
namespace {

/// In bytes: all vertices and indices, and all pictures, as the renderer holds them.
constexpr std::size_t mostGeometry = std::size_t{128} << 20;
constexpr std::size_t mostPixels = std::size_t{32} << 20, mostSide = 8'192;

template <class T>
T load(const std::byte* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

std::size_t wholeNumber(ComponentType type, const std::byte* bytes) {
    switch (type) {
        case ComponentType::UByte:
            return load<std::uint8_t>(bytes);
        case ComponentType::UShort:
            return load<std::uint16_t>(bytes);
        default:
            return load<std::uint32_t>(bytes);
    }
}

float number(ComponentType type, const std::byte* bytes) {
    switch (type) {
        case ComponentType::Byte:
            return load<std::int8_t>(bytes);
        case ComponentType::UByte:
            return load<std::uint8_t>(bytes);
        case ComponentType::Short:
            return load<std::int16_t>(bytes);
        case ComponentType::UShort:
            return load<std::uint16_t>(bytes);
        case ComponentType::UInt:
            return static_cast<float>(load<std::uint32_t>(bytes));
        case ComponentType::Float:
            return load<float>(bytes);
    }
    return 0;
}

NSArray numbers(std::span<const float> values) {
    std::vector<Value> result;
    for (const float value : values) result.emplace_back(double{value});
    return NSArray::arrayWithValues(std::move(result));
}

NSDictionary describe(const ModelBufferView& view) {
    std::vector<NSDictionary::Entry> entries = {
        {NSString("buffer"), 0}, {NSString("byteOffset"), view.offset}, {NSString("byteLength"), view.length}};
    if (view.stride) entries.emplace_back(NSString("byteStride"), view.stride);
    return NSDictionary::dictionaryWithEntries(std::move(entries));
}

NSDictionary describe(const ModelAccessor& accessor) {
    std::vector<NSDictionary::Entry> entries = {{NSString("componentType"), static_cast<int>(accessor.component)},
                                                {NSString("count"), accessor.count},
                                                {NSString("type"), NSString(accessor.type)}};
    if (accessor.view) {
        entries.emplace_back(NSString("bufferView"), *accessor.view);
        entries.emplace_back(NSString("byteOffset"), accessor.offset);
    }
    if (accessor.isNormalized) entries.emplace_back(NSString("normalized"), true);
    if (!accessor.min.empty()) entries.emplace_back(NSString("min"), numbers(accessor.min));
    if (!accessor.max.empty()) entries.emplace_back(NSString("max"), numbers(accessor.max));
    return NSDictionary::dictionaryWithEntries(std::move(entries));
}

NSDictionary describe(const ModelSkin& skin) {
    std::vector<Value> joints(skin.joints.begin(), skin.joints.end());
    std::vector<NSDictionary::Entry> entries = {{NSString("joints"), NSArray::arrayWithValues(std::move(joints))}};
    if (skin.inverseBindMatrices) entries.emplace_back(NSString("inverseBindMatrices"), *skin.inverseBindMatrices);
    return NSDictionary::dictionaryWithEntries(std::move(entries));
}

NSDictionary describe(const ModelAnimation::Sampler& sampler) {
    return {{NSString("input"), sampler.input},
            {NSString("output"), sampler.output},
            {NSString("interpolation"), NSString(sampler.interpolation)}};
}

NSDictionary describe(const ModelAnimation::Channel& channel) {
    const NSDictionary target = {{NSString("node"), *channel.node}, {NSString("path"), NSString(channel.path)}};
    return {{NSString("sampler"), channel.sampler}, {NSString("target"), target}};
}

template <class T>
NSArray describeAll(const std::vector<T>& things);

NSDictionary describe(const ModelAnimation& animation) {
    return {{NSString("samplers"), describeAll(animation.samplers)},
            {NSString("channels"), describeAll(animation.channels)}};
}

template <class T>
NSArray describeAll(const std::vector<T>& things) {
    std::vector<Value> result;
    for (const T& thing : things) result.emplace_back(describe(thing));
    return NSArray::arrayWithValues(std::move(result));
}

void put(std::vector<std::byte>& file, const void* bytes, std::size_t count) {
    const auto* from = static_cast<const std::byte*>(bytes);
    file.insert(file.end(), from, from + count);
}

void putNumber(std::vector<std::byte>& file, std::size_t value) {
    const auto number = static_cast<std::uint32_t>(value);
    put(file, &number, sizeof number);
}

std::size_t aligned(std::size_t size) {
    return (size + 3) / 4 * 4;
}

}  // namespace

ModelPacker::ModelPacker(ModelDescription&& model, std::vector<std::byte>&& data)
    : model_(std::move(model)), data_(std::move(data)), uses_(model_.accessors.size()) {
    data_.resize(aligned(model_.bufferLength));
}

std::optional<ModelContents> ModelPacker::pack(std::string& failure) {
    findUses();
    for (const auto step : {&ModelPacker::countMemory, &ModelPacker::unpackMeshes, &ModelPacker::unpackAccessors,
                            &ModelPacker::checkIndices, &ModelPacker::checkJoints, &ModelPacker::measurePositions,
                            &ModelPacker::checkAnimations, &ModelPacker::checkImages}) {
        (this->*step)();
        if (!refusal_.isRefused()) continue;
        failure = refusal_.reason();
        return std::nullopt;
    }
    return assemble();
}

const std::byte* ModelPacker::element(const ModelAccessor& accessor, std::size_t i) const {
    const ModelBufferView& view = model_.views[*accessor.view];
    return data_.data() + view.offset + accessor.offset + i * (view.stride ? view.stride : accessor.elementSize());
}

float ModelPacker::floatAt(const ModelAccessor& accessor, std::size_t i, std::size_t component) const {
    return load<float>(element(accessor, i) + component * sizeof(float));
}

std::size_t ModelPacker::wholeAt(const ModelAccessor& accessor, std::size_t i, std::size_t component) const {
    return wholeNumber(accessor.component, element(accessor, i) + component * componentSize(accessor.component));
}

// The plainest form.

void ModelPacker::findUses() {
    for (const auto& mesh : model_.meshes) {
        for (const ModelPrimitive& primitive : mesh) {
            for (const auto& [name, accessor] : primitive.attributes) {
                Use& use = uses_[accessor];
                use.isVertex = true;
                use.isPosition |= name == "POSITION";
                use.wantsFloats |= name != "COLOR_0" && name != "JOINTS_0" && name != "WEIGHTS_0";
            }
            for (const auto& target : primitive.targets) {
                for (const auto& [name, accessor] : target) {
                    uses_[accessor].isVertex = uses_[accessor].wantsFloats = true;
                    uses_[accessor].isPosition |= name == "POSITION";
                }
            }
            if (!primitive.indices) continue;
            uses_[*primitive.indices].isIndex = true;
        }
    }
    for (const ModelAnimation& animation : model_.animations) {
        for (const auto& sampler : animation.samplers) {
            for (const std::size_t accessor : {sampler.input, sampler.output})
                uses_[accessor].isOther = uses_[accessor].wantsFloats = true;
        }
    }
    for (const ModelSkin& skin : model_.skins) {
        if (skin.inverseBindMatrices) uses_[*skin.inverseBindMatrices].isOther = true;
    }
}

/// Whether the renderer can be given the elements as they lie.
bool ModelPacker::isPlain(std::size_t index) const {
    const ModelAccessor& accessor = model_.accessors[index];
    const Use& use = uses_[index];
    if (!accessor.view || accessor.sparse) return false;
    if (use.wantsFloats && accessor.component != ComponentType::Float) return false;
    // Distances are for vertices; the renderer ignores them elsewhere.
    return use.isVertex ? !use.isIndex && !use.isOther : model_.views[*accessor.view].stride == 0;
}

void ModelPacker::unpackMeshes() {
    for (std::size_t i = 0; i < model_.meshes.size(); ++i) {
        for (const ModelPrimitive& primitive : model_.meshes[i]) {
            if (primitive.isDraco && !refusal_.isRefused()) unpackMesh(i, primitive);
        }
    }
}

void ModelPacker::unpackMesh(std::size_t mesh, const ModelPrimitive& primitive) {
    std::vector<PackedAttribute> attributes;
    std::vector<std::size_t> targets;
    for (const auto& [name, id] : primitive.dracoAttributes) {
        const auto target = primitive.attribute(name);
        if (!target) continue;
        const ModelAccessor& accessor = model_.accessors[*target];
        attributes.push_back({static_cast<std::uint32_t>(id), accessor.component, accessor.width(), {}});
        targets.push_back(*target);
    }
    const ModelBufferView& view = model_.views[primitive.dracoView];
    ModelAccessor& order = model_.accessors[*primitive.indices];
    std::vector<std::uint32_t> indices(order.count);
    const std::string fault =
        detail::unpackMesh(std::span(data_).subspan(view.offset, view.length),
                           model_.accessors[*primitive.attribute("POSITION")].count, attributes, indices);
    if (!fault.empty()) return refusal_.refuse("meshes[" + std::to_string(mesh) + "] " + fault);
    for (std::size_t i = 0; i < targets.size(); ++i) store(targets[i], std::move(attributes[i].elements));
    order.component = ComponentType::UInt;
    append(order, std::as_bytes(std::span(indices)));
}

void ModelPacker::unpackAccessors() {
    for (std::size_t i = 0; i < model_.accessors.size(); ++i) {
        ModelAccessor& accessor = model_.accessors[i];
        const Use& use = uses_[i];
        const bool isUsed = use.isVertex || use.isIndex || use.isOther;
        if (!isUsed || isPlain(i)) {
            accessor.sparse.reset();
            continue;
        }
        std::vector<std::byte> elements = gather(accessor);
        if (refusal_.isRefused()) return;
        store(i, std::move(elements));
    }
}

void ModelPacker::store(std::size_t index, std::vector<std::byte> elements) {
    ModelAccessor& accessor = model_.accessors[index];
    const Use& use = uses_[index];
    // Elements shorter than four bytes could not lie side by side.
    const bool isOdd = use.isVertex && accessor.elementSize() % 4 != 0;
    if (accessor.component != ComponentType::Float && (use.wantsFloats || isOdd)) {
        elements = asFloats(accessor, elements);
        accessor.component = ComponentType::Float;
        accessor.isNormalized = false;
    }
    append(accessor, elements);
}

std::vector<std::byte> ModelPacker::gather(const ModelAccessor& accessor) {
    const std::size_t size = accessor.elementSize();
    std::vector<std::byte> elements(accessor.count * size);
    if (accessor.view) {
        for (std::size_t i = 0; i < accessor.count; ++i)
            std::memcpy(elements.data() + i * size, element(accessor, i), size);
    }
    if (accessor.sparse) applySparse(accessor, elements);
    return elements;
}

void ModelPacker::applySparse(const ModelAccessor& accessor, std::vector<std::byte>& elements) {
    const ModelAccessor::Sparse& sparse = *accessor.sparse;
    const std::size_t size = accessor.elementSize(), indexSize = componentSize(sparse.indexType);
    const std::byte* indices = data_.data() + model_.views[sparse.indexView].offset + sparse.indexOffset;
    const std::byte* values = data_.data() + model_.views[sparse.valueView].offset + sparse.valueOffset;
    for (std::size_t i = 0; i < sparse.count; ++i) {
        const std::size_t place = wholeNumber(sparse.indexType, indices + i * indexSize);
        if (place >= accessor.count)
            return refusal_.refuse("a sparse accessor replaces elements that it does not have");
        std::memcpy(elements.data() + place * size, values + i * size, size);
    }
}

std::vector<std::byte> ModelPacker::asFloats(const ModelAccessor& accessor, std::span<const std::byte> elements) {
    const std::size_t size = componentSize(accessor.component), count = elements.size() / size;
    const float unit = accessor.isNormalized ? 1 / largestValue(accessor.component) : 1;
    std::vector<std::byte> result(count * sizeof(float));
    for (std::size_t i = 0; i < count; ++i) {
        float value = number(accessor.component, elements.data() + i * size) * unit;
        if (accessor.isNormalized) value = std::max(value, -1.0F);
        std::memcpy(result.data() + i * sizeof value, &value, sizeof value);
    }
    return result;
}

void ModelPacker::append(ModelAccessor& accessor, std::span<const std::byte> elements) {
    const std::size_t offset = data_.size();
    data_.insert(data_.end(), elements.begin(), elements.end());
    data_.resize(aligned(data_.size()));
    accessor.view = model_.views.size();
    accessor.offset = 0;
    accessor.sparse.reset();
    model_.views.push_back({offset, elements.size(), 0});
}

// What the numbers say.

void ModelPacker::countMemory() {
    std::uint64_t geometry = 0;
    const auto add = [&](std::size_t index) {
        const ModelAccessor& accessor = model_.accessors[index];
        geometry += std::uint64_t{accessor.count} * accessor.width() *
                    std::max<std::size_t>(componentSize(accessor.component), 2);
    };
    // Each part gets buffers of its own, even where parts share an accessor.
    for (const auto& mesh : model_.meshes) {
        for (const ModelPrimitive& primitive : mesh) {
            for (const auto& [name, accessor] : primitive.attributes) add(accessor);
            for (const auto& target : primitive.targets) {
                for (const auto& [name, accessor] : target) add(accessor);
            }
            if (primitive.indices) add(*primitive.indices);
            if (geometry > mostGeometry) return refusal_.refuse("its geometry takes more than 128 MiB");
        }
    }
    for (const ModelAnimation& animation : model_.animations) {
        for (const auto& sampler : animation.samplers) {
            add(sampler.input);
            add(sampler.output);
        }
        if (geometry > mostGeometry) return refusal_.refuse("its animations take more than 128 MiB");
    }
    for (const ModelSkin& skin : model_.skins) {
        if (skin.inverseBindMatrices) add(*skin.inverseBindMatrices);
        if (geometry > mostGeometry) return refusal_.refuse("its skins take more than 128 MiB");
    }
    memory_ = static_cast<std::size_t>(geometry);
}

void ModelPacker::checkIndices() {
    for (std::size_t i = 0; i < model_.meshes.size(); ++i) {
        for (const ModelPrimitive& primitive : model_.meshes[i]) {
            if (!primitive.indices) continue;
            const ModelAccessor& indices = model_.accessors[*primitive.indices];
            const std::size_t vertices = model_.accessors[*primitive.attribute("POSITION")].count;
            for (std::size_t k = 0; k < indices.count; ++k) {
                if (wholeAt(indices, k, 0) < vertices) continue;
                return refusal_.refuse("meshes[" + std::to_string(i) + "] has an index beyond its vertices");
            }
        }
    }
}

void ModelPacker::checkJoints() {
    for (std::size_t i = 0; i < model_.nodes.size(); ++i) {
        const ModelNode& node = model_.nodes[i];
        if (!node.skin || !node.mesh) continue;
        const std::size_t joints = model_.skins[*node.skin].joints.size();
        for (const ModelPrimitive& primitive : model_.meshes[*node.mesh]) {
            const auto index = primitive.attribute("JOINTS_0");
            if (!index) continue;
            const ModelAccessor& accessor = model_.accessors[*index];
            for (std::size_t k = 0; k < accessor.count * 4; ++k) {
                if (wholeAt(accessor, k / 4, k % 4) < joints) continue;
                return refusal_.refuse("nodes[" + std::to_string(i) + "] is moved by a joint that is not there");
            }
        }
    }
}

void ModelPacker::measurePositions() {
    for (std::size_t i = 0; i < model_.accessors.size(); ++i) {
        ModelAccessor& accessor = model_.accessors[i];
        if (!uses_[i].isPosition) continue;
        accessor.min.assign(3, std::numeric_limits<float>::max());
        accessor.max.assign(3, std::numeric_limits<float>::lowest());
        for (std::size_t k = 0; k < accessor.count * 3; ++k) {
            const float value = floatAt(accessor, k / 3, k % 3);
            if (!std::isfinite(value)) return refusal_.refuse("it has a vertex that lies nowhere");
            accessor.min[k % 3] = std::min(accessor.min[k % 3], value);
            accessor.max[k % 3] = std::max(accessor.max[k % 3], value);
        }
    }
}

void ModelPacker::checkAnimations() {
    for (std::size_t i = 0; i < model_.animations.size(); ++i) {
        const auto refuse = [&](std::string_view what) {
            refusal_.refuse("animations[" + std::to_string(i) + "] " + std::string(what));
        };
        for (const auto& sampler : model_.animations[i].samplers) {
            const ModelAccessor &input = model_.accessors[sampler.input], &output = model_.accessors[sampler.output];
            for (std::size_t k = 0; k < input.count; ++k) {
                const float time = floatAt(input, k, 0);
                const bool isLater = k == 0 ? time >= 0 : time > floatAt(input, k - 1, 0);
                if (!std::isfinite(time) || !isLater) return refuse("does not go forward in time");
            }
            for (std::size_t k = 0; k < output.count * output.width(); ++k) {
                if (!std::isfinite(floatAt(output, k / output.width(), k % output.width())))
                    return refuse("leads nowhere");
            }
        }
    }
}

void ModelPacker::checkImages() {
    std::size_t pixels = 0;
    for (std::size_t i = 0; i < model_.images.size(); ++i) {
        const auto refuse = [&](std::string_view what) {
            refusal_.refuse("images[" + std::to_string(i) + "] " + std::string(what));
        };
        if (!model_.images[i].isUsed) continue;
        const ModelBufferView& view = model_.views[model_.images[i].view];
        const auto header = readImageHeader(std::span(data_).subspan(view.offset, view.length));
        if (!header || (header->format != ImageFormat::PNG && header->format != ImageFormat::JPEG))
            return refuse("is neither PNG nor JPEG");
        const auto width = static_cast<std::size_t>(header->width), height = static_cast<std::size_t>(header->height);
        if (width > mostSide || height > mostSide) return refuse("is larger than 8192 pixels");
        pixels += width * height;
        if (pixels > mostPixels) return refuse("is one too many: the pictures have more than 32 million pixels");
    }
    memory_ += pixels * 16 / 3;
}

// The file anew.

std::string ModelPacker::description() const {
    std::vector<NSDictionary::Entry> entries = model_.clean;
    constexpr std::string_view anew[] = {"buffers", "bufferViews", "accessors", "skins", "animations"};
    std::erase_if(entries, [&](const NSDictionary::Entry& entry) {
        return std::ranges::find(anew, entry.first.as<NSString>().text()) != std::end(anew);
    });
    if (!data_.empty()) {
        const NSDictionary buffer = {{NSString("byteLength"), data_.size()}};
        entries.emplace_back(NSString("buffers"), NSArray{buffer});
    }
    const auto add = [&](std::string_view name, const auto& things) {
        if (!things.empty()) entries.emplace_back(NSString(name), describeAll(things));
    };
    add("bufferViews", model_.views);
    add("accessors", model_.accessors);
    add("skins", model_.skins);
    add("animations", model_.animations);
    std::string text;
    NSJSONSerialization::writeJSONObject(NSDictionary::dictionaryWithEntries(std::move(entries)), text,
                                         NSJSONWritingStrict, nullptr);
    text.resize(aligned(text.size()), ' ');
    return text;
}

ModelContents ModelPacker::assemble() {
    const std::string text = description();
    const std::size_t length = 12 + 8 + text.size() + (data_.empty() ? 0 : 8 + data_.size());
    ModelContents contents;
    contents.bytes.reserve(length);
    put(contents.bytes, "glTF", 4);
    putNumber(contents.bytes, 2);
    putNumber(contents.bytes, length);
    putNumber(contents.bytes, text.size());
    put(contents.bytes, "JSON", 4);
    put(contents.bytes, text.data(), text.size());
    if (!data_.empty()) {
        putNumber(contents.bytes, data_.size());
        put(contents.bytes, "BIN\0", 4);
        put(contents.bytes, data_.data(), data_.size());
    }
    contents.animations = compatibleAnimations(model_);
    contents.isSkinned = !model_.skins.empty();
    contents.hasCutOuts = model_.hasCutOuts;
    contents.memory = memory_;
    return contents;
}

}  // namespace flarebox::detail
