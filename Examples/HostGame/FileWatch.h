#pragma once

#include <filesystem>
#include <map>
#include <utility>
#include <vector>

namespace flarebox::hostgame {

/// Notices that files change, appear or go. A folder stands for the files in it.
class FileWatch {
public:
    explicit FileWatch(std::vector<std::filesystem::path> places);

    /// Whether something has changed since the last call.
    bool hasChanged();

private:
    using Seen = std::map<std::filesystem::path, std::pair<std::filesystem::file_time_type, std::uintmax_t>>;
    Seen look() const;

    const std::vector<std::filesystem::path> places_;
    Seen seen_;
};

}  // namespace flarebox::hostgame
