#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

namespace flarebox {

/// A process-wide table from a class's name to something made once per class. Entries are never removed or moved. Any
/// thread.
template <class Entry>
class ClassCache {
public:
    /// The class's entry, made under the lock on first use, which may ask this cache for other classes. When making
    /// fails with an exception nothing is stored and the lock is released.
    template <class Make>
    Entry& entry(std::string_view className, Make make) {
        const std::lock_guard lock(mutex_);
        if (const auto found = entries_.find(className); found != entries_.end()) return found->second;
        Entry made = make();
        return entries_.emplace(className, std::move(made)).first->second;
    }

    std::recursive_mutex& mutex() { return mutex_; }

private:
    std::recursive_mutex mutex_;
    std::map<std::string, Entry, std::less<>> entries_;
};

}  // namespace flarebox
