#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace flarebox::examples {

/// A file as it is sent.
struct StoredFile {
    std::string bytes;
    std::string contentType;
    /// With its quotation marks; depends on the bytes alone.
    std::string etag;
};

std::shared_ptr<const StoredFile> storedFile(std::string bytes, std::string_view contentType);

}  // namespace flarebox::examples
