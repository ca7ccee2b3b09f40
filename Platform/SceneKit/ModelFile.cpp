#include <SceneKit/ModelFile.h>

#include <Foundation/RegularFile.h>
#include <SceneKit/ModelDescription.h>
#include <SceneKit/ModelPacker.h>

#include <cstring>

namespace flarebox::detail {
namespace {

constexpr std::size_t largestDescription = std::size_t{8} << 20;
constexpr std::uint32_t jsonChunk = 0x4E4F534A, binaryChunk = 0x004E4942;

/// The parts of an opened file.
struct Parts {
    std::string description;
    std::size_t dataOffset = 0, dataLength = 0;
};

/// Why the file is none that can be read; empty on success.
std::string readParts(const RegularFile& file, Parts& parts) {
    if (!file.isOpen()) return "it cannot be opened";
    const std::uint64_t size = file.size();
    if (size > largestModelFile) return "it is larger than 256 MiB";
    std::uint32_t head[5];
    if (size < sizeof head || !file.read(0, head, sizeof head)) return "it is too short for a model";
    if (std::memcmp(head, "glTF", 4) != 0) return "it is no binary glTF file";
    if (head[1] != 2) return "it is of version " + std::to_string(head[1]) + " of binary glTF, not 2";
    const std::size_t length = head[2], descriptionLength = head[3];
    if (length > size || length < sizeof head) return "it is cut off";
    if (head[4] != jsonChunk) return "it does not begin with its description";
    if (descriptionLength > length - sizeof head) return "its description is cut off";
    if (descriptionLength > largestDescription) return "its description is longer than 8 MiB";
    parts.description.resize(descriptionLength);
    if (!file.read(sizeof head, parts.description.data(), descriptionLength)) return "it cannot be read";

    std::size_t offset = sizeof head + descriptionLength;
    std::uint32_t chunk[2];
    if (offset == length) return {};
    if (length - offset < sizeof chunk || !file.read(offset, chunk, sizeof chunk)) return "its binary data is cut off";
    offset += sizeof chunk;
    if (chunk[0] > length - offset) return "its binary data is cut off";
    if (chunk[1] != binaryChunk) return {};
    parts.dataOffset = offset;
    parts.dataLength = chunk[0];
    return {};
}

std::optional<ModelDescription> describe(const RegularFile& file, Parts& parts, std::string& failure) {
    failure = readParts(file, parts);
    if (!failure.empty()) return std::nullopt;
    auto model = readDescription(parts.description, failure);
    if (model && model->bufferLength > parts.dataLength) {
        failure = "it has less binary data than it says";
        return std::nullopt;
    }
    return model;
}

}  // namespace

std::optional<ModelSummary> readModelSummary(const std::string& path, std::string& failure) {
    const RegularFile file(path, RegularFile::Links::Refuse);
    Parts parts;
    const auto model = describe(file, parts, failure);
    if (!model) return std::nullopt;
    const auto read = [&](const ModelAccessor& accessor, std::size_t element) {
        SCNMatrix4 matrix;
        if (!accessor.view || accessor.component != ComponentType::Float) return matrix;
        const ModelBufferView& view = model->views[*accessor.view];
        const std::size_t offset =
            view.offset + accessor.offset + element * (view.stride ? view.stride : sizeof matrix.m);
        SCNMatrix4 stored;
        return file.read(parts.dataOffset + offset, stored.m.data(), sizeof stored.m) ? stored : matrix;
    };
    return ModelSummary{modelBounds(*model, read), !model->animations.empty()};
}

std::optional<ModelContents> readModelContents(const std::string& path, std::string& failure) {
    const RegularFile file(path, RegularFile::Links::Refuse);
    Parts parts;
    auto model = describe(file, parts, failure);
    if (!model) return std::nullopt;
    std::vector<std::byte> data(model->bufferLength);
    if (!file.read(parts.dataOffset, data.data(), data.size())) {
        failure = "it cannot be read";
        return std::nullopt;
    }
    return ModelPacker(std::move(*model), std::move(data)).pack(failure);
}

}  // namespace flarebox::detail
