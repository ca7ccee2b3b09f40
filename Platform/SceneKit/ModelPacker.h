#pragma once

#include <SceneKit/CheckedObject.h>
#include <SceneKit/ModelDescription.h>
#include <SceneKit/ModelFile.h>

#include <cstddef>
#include <span>
#include <vector>

namespace flarebox::detail {

/// Checks a model's binary data against its description, brings everything into the plainest form that says the same,
/// and packs both into a file of its own.
class ModelPacker {
public:
    /// Takes over what it is given. The data is as long as the description says, or longer.
    ModelPacker(ModelDescription&& model, std::vector<std::byte>&& data);

    /// Nothing, with the reason in `failure`, for data that does not fit the description.
    std::optional<ModelContents> pack(std::string& failure);

private:
    /// What the accessors are used for.
    struct Use {
        bool isVertex = false, isPosition = false, isIndex = false, isOther = false;
        bool wantsFloats = false;
    };

    void findUses();
    void unpackMeshes();
    void unpackMesh(std::size_t mesh, const ModelPrimitive& primitive);
    void unpackAccessors();
    bool isPlain(std::size_t accessor) const;
    std::vector<std::byte> gather(const ModelAccessor& accessor);
    void applySparse(const ModelAccessor& accessor, std::vector<std::byte>& elements);
    static std::vector<std::byte> asFloats(const ModelAccessor& accessor, std::span<const std::byte> elements);
    /// Puts the elements in the place of those that the accessor has had.
    void store(std::size_t accessor, std::vector<std::byte> elements);
    void append(ModelAccessor& accessor, std::span<const std::byte> elements);

    void checkIndices();
    void checkJoints();
    void measurePositions();
    void checkAnimations();
    void checkImages();
    void countMemory();
    std::string description() const;
    ModelContents assemble();

    /// The bytes of one element; the accessor is plain or at least has a view.
    const std::byte* element(const ModelAccessor& accessor, std::size_t i) const;
    float floatAt(const ModelAccessor& accessor, std::size_t element, std::size_t component) const;
    std::size_t wholeAt(const ModelAccessor& accessor, std::size_t element, std::size_t component) const;

    ModelDescription model_;
    std::vector<std::byte> data_;
    std::vector<Use> uses_;
    Refusal refusal_;
    std::size_t memory_ = 0;
};

}  // namespace flarebox::detail
