#include "StoredFile.h"

#include <cstdint>
#include <cstdio>

namespace flarebox::examples {
namespace {

// FNV-1a.
std::string etagOf(std::string_view bytes) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    char text[24];
    std::snprintf(text, sizeof text, "\"%016llx\"", static_cast<unsigned long long>(hash));
    return text;
}

}  // namespace

std::shared_ptr<const StoredFile> storedFile(std::string bytes, std::string_view contentType) {
    auto file = std::make_shared<StoredFile>();
    file->etag = etagOf(bytes);
    file->bytes = std::move(bytes);
    file->contentType = contentType;
    return file;
}

}  // namespace flarebox::examples
