#pragma once

#include "StoredFile.h"

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace flarebox::examples {

/// The products' models and videos, which lie in a folder as files named after the products. Each is read when it is
/// first asked for. Safe on any thread.
class Media {
public:
    /// "Content" beside the executable, or that of the source tree.
    Media();

    /// The path of a product's model, "/media/models/halo-one.glb" for example; empty where it has none.
    std::string modelOf(std::string_view product) const;
    std::string videoOf(std::string_view product) const;

    /// What lies at such a path; null for nothing.
    std::shared_ptr<const StoredFile> fileAt(std::string_view path);

private:
    std::filesystem::path folder_;
    std::mutex mutex_;
    std::map<std::string, std::shared_ptr<const StoredFile>, std::less<>> files_;
};

}  // namespace flarebox::examples
