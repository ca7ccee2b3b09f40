#pragma once

#include <Foundation/Values.h>
#include <SceneKit/SCNMath.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox::detail {

/// As the format numbers them.
enum class ComponentType : std::uint16_t {
    Byte = 5120,
    UByte = 5121,
    Short = 5122,
    UShort = 5123,
    UInt = 5125,
    Float = 5126
};
std::size_t componentSize(ComponentType type);
/// What stands for 1 in normalised elements.
float largestValue(ComponentType type);

/// A part of the binary data.
struct ModelBufferView {
    std::size_t offset = 0, length = 0;
    /// From element to element; 0 where they lie side by side.
    std::size_t stride = 0;
};

/// Elements in a part of the binary data.
struct ModelAccessor {
    /// Values that take the place of others.
    struct Sparse {
        std::size_t count = 0;
        std::size_t indexView = 0, indexOffset = 0;
        ComponentType indexType = ComponentType::UInt;
        std::size_t valueView = 0, valueOffset = 0;
    };

    /// Without a view all elements are zero.
    std::optional<std::size_t> view;
    std::size_t offset = 0, count = 0;
    ComponentType component = ComponentType::Float;
    std::string type;
    bool isNormalized = false;
    std::vector<float> min, max;
    std::optional<Sparse> sparse;

    /// Numbers in an element, and the bytes that it takes.
    std::size_t width() const;
    std::size_t elementSize() const { return width() * componentSize(component); }
};

struct ModelPrimitive {
    using Attributes = std::vector<std::pair<std::string, std::size_t>>;
    Attributes attributes;
    std::optional<std::size_t> indices;
    std::vector<Attributes> targets;
    /// Whether vertices and indices are packed.
    bool isDraco = false;
    std::size_t dracoView = 0;
    Attributes dracoAttributes;
    /// 0 for points up to 6 for triangle fans.
    std::size_t mode = 4;

    std::optional<std::size_t> attribute(std::string_view name) const;
};

struct ModelNode {
    std::vector<std::size_t> children;
    std::optional<std::size_t> mesh, skin;
    SCNMatrix4 transform;
};

struct ModelSkin {
    std::vector<std::size_t> joints;
    std::optional<std::size_t> inverseBindMatrices;
};

struct ModelAnimation {
    struct Sampler {
        std::size_t input = 0, output = 0;
        std::string interpolation;
        /// Whether each moment has a value and two tangents.
        bool isCubic() const { return interpolation == "CUBICSPLINE"; }
    };
    struct Channel {
        std::size_t sampler = 0;
        std::optional<std::size_t> node;
        std::string path;
    };
    std::vector<Sampler> samplers;
    std::vector<Channel> channels;
};

struct ModelImage {
    std::size_t view = 0;
    /// What it says to be, where that is none of the kinds that can be shown. Files offer such pictures beside others.
    std::string otherKind;
    /// Whether a texture is made of it.
    bool isUsed = false;
};

/// All that a model file's description says, as far as it matters.
struct ModelDescription {
    std::size_t bufferLength = 0;
    std::vector<ModelBufferView> views;
    std::vector<ModelAccessor> accessors;
    std::vector<std::vector<ModelPrimitive>> meshes;
    std::vector<ModelNode> nodes;
    std::vector<ModelSkin> skins;
    std::vector<ModelAnimation> animations;
    std::vector<ModelImage> images;
    /// Whether a material is opaque in some places and not there in others.
    bool hasCutOuts = false;
    /// Of the scene that is shown.
    std::vector<std::size_t> roots;
    /// The description written anew from what was checked, without what is kept above in full: buffers, views,
    /// accessors, skins and animations.
    std::vector<NSDictionary::Entry> clean;
};

/// Reads a description and checks all that can be checked without the binary data. Nothing, with the reason in
/// `failure`, when it cannot be shown.
std::optional<ModelDescription> readDescription(std::string_view json, std::string& failure);
/// What is wrong with how the parts fit together, or an empty text; part of `readDescription`.
std::string findFault(const ModelDescription& model);

/// In no order that matters.
std::vector<std::size_t> shownNodes(const ModelDescription& model);
/// Lets go of what moves only nodes that are not shown: the renderer falls over it.
void keepWhatIsShown(ModelDescription& model);

/// Reads one 4 x 4 matrix of an accessor's.
using ReadMatrix = std::function<SCNMatrix4(const ModelAccessor& accessor, std::size_t element)>;
/// Around the model at rest.
SCNBoundingBox modelBounds(const ModelDescription& model, const ReadMatrix& read);
/// Those that can play at the same time: the first, and every further one that moves nothing that another one moves.
std::vector<std::size_t> compatibleAnimations(const ModelDescription& model);

}  // namespace flarebox::detail
