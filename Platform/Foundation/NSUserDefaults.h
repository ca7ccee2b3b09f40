#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <Foundation/Values.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace flarebox {

namespace detail {
template <class T>
class Immortal;
}

/// The application's settings, kept in one property-list file. Any thread.
///
/// The file is read at the first use. Changes are written at the main queue's next turn, at the end of the process, and
/// by `synchronize`; a file appears complete or not at all. One that cannot be read as settings is renamed to
/// `<file>.corrupt` and the settings start empty. Where no file can be used the settings live in memory alone.
class FLAREBOX_EXPORT NSUserDefaults {
public:
    /// The one instance; lasts as long as the process.
    static NSUserDefaults& standardUserDefaults();

    /// Keeps the settings in that file from now on, replacing those in memory by its contents; an empty path means
    /// memory alone. Without this call the file is `UserDefaults.plist` in `NSProcessInfo::configurationDirectory()`.
    /// False, with `lastError()`, when the file exists but could not be read.
    bool setFile(std::string_view path);
    /// The file in use; empty for memory alone.
    std::string file() const;

    /// Absent when there is no such key.
    Value objectForKey(std::string_view key) const;
    /// A text, or a number's text; absent for anything else.
    NSString stringForKey(std::string_view key) const;
    /// A number, or the number that a text begins with; 0 for anything else.
    std::int64_t integerForKey(std::string_view key) const;
    /// The same, with decimals.
    double doubleForKey(std::string_view key) const;
    /// A number that is not 0, or a text that begins like "YES", "true" or a number that is not 0.
    bool boolForKey(std::string_view key) const;

    /// Stores a copy of a property-list value (Foundation/NSPropertyListSerialization.h); an absent value removes the
    /// key. False, with nothing changed and `lastError()` telling why, for any other value.
    bool setObject(const Value& value, std::string_view key);
    /// Nothing happens where there is no such key.
    void removeObjectForKey(std::string_view key);

    /// Writes changes now. False, with `lastError()`, when that failed; they are kept and tried again at the next
    /// chance.
    bool synchronize();
    /// Why the latest reading, storing or writing failed; null when it did not.
    Ref<NSError> lastError() const;

private:
    friend class detail::Immortal<NSUserDefaults>;
    NSUserDefaults() = default;
    ~NSUserDefaults() = default;

    // With the lock held.
    void loadOnce() const;
    bool load(std::string file) const;
    bool save();
    void changed();

    mutable std::mutex mutex_;
    mutable bool isLoaded_ = false;
    mutable std::string file_;
    mutable std::map<std::string, Value, std::less<>> values_;
    mutable Ref<NSError> lastError_;
    bool isDirty_ = false;
    std::atomic<bool> isSaveScheduled_ = false;
};

}  // namespace flarebox
