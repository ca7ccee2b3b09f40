#pragma once

#include <SceneKit/SCNMath.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace flarebox::detail {

/// Largest model file in bytes.
inline constexpr std::size_t largestModelFile = std::size_t{256} << 20;

/// What can be said of a model without reading its vertices and pictures.
struct ModelSummary {
    /// Around the model at rest; empty when there is nothing to see.
    SCNBoundingBox bounds = SCNBoundingBox::empty();
    bool isAnimated = false;
};

/// A model that has been checked through and through, written anew so that nothing unchecked is left in it.
struct ModelContents {
    /// A binary glTF 2.0 file.
    std::vector<std::byte> bytes;
    /// Those that can play at the same time.
    std::vector<std::size_t> animations;
    bool isSkinned = false;
    /// Whether a material is opaque in some places and not there in others.
    bool hasCutOuts = false;
    /// About how much memory it takes once decoded, in bytes.
    std::size_t memory = 0;
};

/// Reads a binary glTF 2.0 file's description and checks it: quick for files of any size. Nothing, with the reason in
/// `failure`, for what cannot be shown. Any thread.
std::optional<ModelSummary> readModelSummary(const std::string& path, std::string& failure);
/// Reads and checks all of the file. Takes as long as reading does. Any thread.
std::optional<ModelContents> readModelContents(const std::string& path, std::string& failure);

}  // namespace flarebox::detail
