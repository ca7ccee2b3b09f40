// Packed meshes: what is unpacked is as long as it was asked for.

#include <Fuzz/Support/ByteSource.h>

#include <SceneKit/PackedMesh.h>

#include <vector>

namespace flarebox::fuzz {

FLAREBOX_FUZZER(PackedMesh) {
    using detail::ComponentType;
    ByteSource source(input);
    static constexpr ComponentType components[] = {ComponentType::Float,  ComponentType::UByte, ComponentType::Byte,
                                                   ComponentType::UShort, ComponentType::Short, ComponentType::UInt};
    const std::size_t vertexCount = source.byte();
    std::vector<std::uint32_t> indices(3 * source.below(64));
    std::vector<detail::PackedAttribute> attributes(source.below(4));
    for (detail::PackedAttribute& attribute : attributes) {
        attribute.id = source.byte();
        attribute.component = source.pick(components);
        attribute.width = 1 + source.below(4);
    }
    const auto packed = std::as_bytes(source.rest());
    if (!detail::unpackMesh(packed, vertexCount, attributes, indices).empty()) return;
    for (const detail::PackedAttribute& attribute : attributes) {
        check(attribute.elements.size() == vertexCount * attribute.width * detail::componentSize(attribute.component),
              "an element for every vertex");
    }
}

}  // namespace flarebox::fuzz
