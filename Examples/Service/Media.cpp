#include "Media.h"

#include "Catalogue.h"

#include <fstream>
#include <iterator>
#include <system_error>

namespace flarebox::examples {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view prefix = "/media/";

struct Kind {
    std::string_view folder, suffix, contentType;
};
constexpr Kind models[] = {{"models", ".glb", "model/gltf-binary"}};
constexpr Kind videos[] = {{"videos", ".mp4", "video/mp4"}, {"videos", ".webm", "video/webm"}};

fs::path contentFolder() {
    std::error_code error;
    const fs::path beside = fs::read_symlink("/proc/self/exe", error).parent_path() / "Content";
    if (!error && fs::is_directory(beside, error)) return beside;
    return SERVICE_CONTENT;
}

std::string relativePath(const Kind& kind, std::string_view product) {
    return std::string(kind.folder) + "/" + std::string(product) + std::string(kind.suffix);
}

template <std::size_t count>
std::string pathOf(const fs::path& folder, const Kind (&kinds)[count], std::string_view product) {
    std::error_code error;
    for (const Kind& kind : kinds) {
        const std::string path = relativePath(kind, product);
        if (fs::is_regular_file(folder / path, error)) return std::string(prefix) + path;
    }
    return {};
}

/// The kind of the file that a product has at that path; null for other paths, so that no path leads out of the folder.
const Kind* kindAt(std::string_view path) {
    for (const Product& product : catalogue()) {
        for (const Kind& kind : models)
            if (path == relativePath(kind, product.name)) return &kind;
        for (const Kind& kind : videos)
            if (path == relativePath(kind, product.name)) return &kind;
    }
    return nullptr;
}

}  // namespace

Media::Media() : folder_(contentFolder()) {}

std::string Media::modelOf(std::string_view product) const {
    return pathOf(folder_, models, product);
}

std::string Media::videoOf(std::string_view product) const {
    return pathOf(folder_, videos, product);
}

std::shared_ptr<const StoredFile> Media::fileAt(std::string_view path) {
    if (!path.starts_with(prefix)) return nullptr;
    path.remove_prefix(prefix.size());
    const Kind* kind = kindAt(path);
    if (!kind) return nullptr;
    const std::lock_guard lock(mutex_);
    if (const auto found = files_.find(path); found != files_.end()) return found->second;
    std::ifstream stream(folder_ / path, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream) return nullptr;
    return files_.emplace(path, storedFile(std::move(bytes), kind->contentType)).first->second;
}

}  // namespace flarebox::examples
