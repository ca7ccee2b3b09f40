#include <SceneKit/ModelFile.h>

#include <SceneKit/ModelDescription.h>
#include <SceneKit/ModelPacker.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

namespace flarebox::detail {
namespace {

constexpr std::size_t largestDescription = std::size_t{8} << 20;
constexpr std::uint32_t jsonChunk = 0x4E4F534A, binaryChunk = 0x004E4942;

/// A regular file, read from its start to its end. A link is none.
class File {
public:
    explicit File(const std::string& path)
        : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW)) {}
    ~File() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Nothing for what is no regular file.
    std::optional<std::size_t> size() const {
        struct stat status {};
        if (descriptor_ < 0 || fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
        return static_cast<std::size_t>(status.st_size);
    }
    bool read(std::size_t offset, void* buffer, std::size_t size) const {
        auto* to = static_cast<std::byte*>(buffer);
        while (size > 0) {
            const ssize_t count = pread(descriptor_, to, size, static_cast<off_t>(offset));
            if (count <= 0) return false;
            offset += static_cast<std::size_t>(count);
            to += count;
            size -= static_cast<std::size_t>(count);
        }
        return true;
    }

private:
    int descriptor_;
};

/// The parts of an opened file.
struct Parts {
    std::string description;
    std::size_t dataOffset = 0, dataLength = 0;
};

/// Why the file is none that can be read; empty on success.
std::string readParts(const File& file, Parts& parts) {
    const auto size = file.size();
    if (!size) return "it cannot be opened";
    if (*size > largestModelFile) return "it is larger than 256 MiB";
    std::uint32_t head[5];
    if (*size < sizeof head || !file.read(0, head, sizeof head)) return "it is too short for a model";
    if (std::memcmp(head, "glTF", 4) != 0) return "it is no binary glTF file";
    if (head[1] != 2) return "it is of version " + std::to_string(head[1]) + " of binary glTF, not 2";
    const std::size_t length = head[2], descriptionLength = head[3];
    if (length > *size) return "it is cut off";
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

std::optional<ModelDescription> describe(const File& file, Parts& parts, std::string& failure) {
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
    const File file(path);
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
    const File file(path);
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
