#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace flarebox::testing {

/// A fresh folder that goes away with everything in it.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::random_device random;
        do {
            const std::string name = "flarebox-test-" + std::to_string(random()) + "-" + std::to_string(random());
            path_ = (std::filesystem::temp_directory_path() / name).generic_string();
        } while (!std::filesystem::create_directory(path_));
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    std::string path(std::string_view name = {}) const {
        return name.empty() ? path_ : path_ + "/" + std::string(name);
    }

    /// Writes a file, making the folders above it; returns its path.
    std::string write(std::string_view name, std::string_view contents) const {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream(path(name), std::ios::binary) << contents;
        return path(name);
    }
    std::string read(std::string_view name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool has(std::string_view name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(path(name)));
    }

private:
    std::string path_;
};

}  // namespace flarebox::testing
