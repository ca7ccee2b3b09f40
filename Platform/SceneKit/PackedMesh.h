#pragma once

#include <SceneKit/ModelDescription.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace flarebox::detail {

/// One kind of numbers of a packed mesh's vertices: what it is asked for, and what it holds.
struct PackedAttribute {
    /// The mesh's own name for it.
    std::uint32_t id = 0;
    ComponentType component = ComponentType::Float;
    std::size_t width = 0;
    /// One element a vertex, side by side.
    std::vector<std::byte> elements;
};

/// Unpacks a mesh of exactly so many vertices and indices. Answers why it cannot be, or an empty text. Any thread.
std::string unpackMesh(std::span<const std::byte> packed, std::size_t vertexCount,
                       std::vector<PackedAttribute>& attributes, std::span<std::uint32_t> indices);

}  // namespace flarebox::detail
