#include "FileWatch.h"

#include <system_error>

namespace flarebox::hostgame {

FileWatch::FileWatch(std::vector<std::filesystem::path> places) : places_(std::move(places)), seen_(look()) {}

bool FileWatch::hasChanged() {
    Seen now = look();
    if (now == seen_) return false;
    seen_ = std::move(now);
    return true;
}

FileWatch::Seen FileWatch::look() const {
    Seen seen;
    const auto add = [&seen](const std::filesystem::path& file) {
        std::error_code gone;
        const auto time = std::filesystem::last_write_time(file, gone);
        const auto size = std::filesystem::file_size(file, gone);
        if (!gone) seen.emplace(file, std::pair(time, size));
    };
    for (const auto& place : places_) {
        std::error_code noFolder;
        std::filesystem::directory_iterator entry(place, noFolder);
        if (noFolder) add(place);
        for (; entry != std::filesystem::directory_iterator(); entry.increment(noFolder)) add(entry->path());
    }
    return seen;
}

}  // namespace flarebox::hostgame
