#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <Foundation/NSObject.h>
#include <Foundation/StringsTable.h>
#include <Foundation/Values.h>

#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox {

/// A file that is part of the program: its path within the bundle, such as "en.lproj/Main.strings", and what it holds.
/// Both live as long as the process.
struct BuiltInFile {
    std::string_view path;      ///< relative, with slashes
    std::string_view contents;  ///< the whole file
};

/// A folder of resources: an information table (`Info.plist`), files, and texts in the user's language
/// (`<language>.lproj/<table>.strings`). A folder or file that is missing is empty, not an error. Any thread.
class FLAREBOX_EXPORT NSBundle : public NSObject {
    FLAREBOX_CLASS(NSBundle)
public:
    /// The bundle of a folder, the same object for the same path; null when there is no such folder.
    static Ref<NSBundle> bundleWithPath(std::string_view path);
    /// The host application's own: the folder that it has set, or `Resources` beside the executable. Never null.
    static Ref<NSBundle> mainBundle();
    /// Makes `mainBundle()` the bundle of that folder, which need not exist.
    static void setMainBundlePath(std::string_view path);
    /// The bundle registered under that identifier, or one already in use whose information table carries it; null if
    /// there is none.
    static Ref<NSBundle> bundleWithIdentifier(std::string_view identifier);
    /// Makes the bundle of a folder, which need not exist, known under an identifier; replaces an earlier one.
    static Ref<NSBundle> registerBundle(std::string_view identifier, std::string_view path);

    const std::string& bundlePath() const { return path_; }  ///< the folder, absolute
    /// Files that stand in for those that the folder lacks, one by one.
    void setBuiltInFiles(std::span<const BuiltInFile> files);
    /// The registered identifier, or "CFBundleIdentifier" of the information table; empty if there is neither.
    std::string bundleIdentifier() const;

    /// The information table, read at the first call. Empty when the file is missing or damaged; `error` then tells
    /// which.
    NSDictionary infoDictionary(Ref<NSError>* error = nullptr) const;
    /// Absent when the table has no such key.
    Value objectForInfoDictionaryKey(std::string_view key) const;
    /// Overrides one entry of the table for this process, before or after it was read; an absent value removes the
    /// entry.
    void setInfoDictionaryValue(std::string_view key, Value value);
    /// Takes the override of an entry back: it is what the table says again.
    void resetInfoDictionaryValue(std::string_view key);

    /// Path of a file of the bundle, looked for in the folder itself, then in those of the user's languages; absent
    /// when there is none. `name` may hold folders; it never leads out of the bundle.
    NSString pathForResource(std::string_view name, std::string_view extension) const;
    /// What a built-in file holds, looked for in the same order; absent when there is none.
    NSString builtInResource(std::string_view name, std::string_view extension) const;

    /// The text of that key in the user's language, else in English; where there is none, `value`, or the key if
    /// `value` is empty. An empty table name means "Localizable".
    NSString localizedStringForKey(std::string_view key, std::string_view value = {},
                                   std::string_view table = {}) const;

    /// Languages in order of preference, such as "de-DE" or "en"; from the process's locale until set. Empty: from the
    /// locale again.
    static std::vector<std::string> preferredLanguages();
    /// Texts that were looked up already stay as they are.
    static void setPreferredLanguages(std::vector<std::string> languages);

private:
    template <class T, class... Arguments>
    friend Ref<T> make(Arguments&&...);
    explicit NSBundle(std::string path) : path_(std::move(path)) {}

    /// The bundle of a normalised path; the registry is locked by the caller.
    static Ref<NSBundle> bundleAt(const std::string& path);
    NSDictionary loadInfo() const;
    /// Absent when there is none of that path.
    NSString builtInFile(std::string_view path) const;
    const detail::StringsTable& stringsTable(const std::string& language, std::string_view table) const;

    const std::string path_;
    mutable std::mutex mutex_;
    std::string identifier_;
    mutable std::optional<NSDictionary> info_;
    mutable Ref<NSError> infoError_;
    std::span<const BuiltInFile> builtInFiles_;
    std::map<std::string, Value, std::less<>> overrides_;
    mutable std::map<std::string, detail::StringsTable, std::less<>> stringsTables_;
};

}  // namespace flarebox
