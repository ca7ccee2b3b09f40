#include <Foundation/Backend/Icu/Unicode.h>
#include <Foundation/Immortal.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSProcessInfo.h>
#include <Foundation/NSPropertyListSerialization.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace flarebox {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t maximumStringsFileSize = std::size_t{16} * 1024 * 1024;

/// All bundles in use, and what the process was told about them.
struct Registry {
    std::mutex mutex;
    std::map<std::string, Ref<NSBundle>, std::less<>> byPath;
    std::map<std::string, Ref<NSBundle>, std::less<>> byIdentifier;
    std::string mainPath;
    std::vector<std::string> languages;
};

Registry& registry() {
    static detail::Immortal<Registry> bundles;
    return *bundles;
}

std::string normalized(std::string_view path) {
    std::error_code failure;
    fs::path absolute = fs::absolute(fs::path(path), failure).lexically_normal();
    if (!absolute.has_filename()) absolute = absolute.parent_path();
    return absolute.string();
}

/// Whether a name read as a path stays below the folder that it is appended to.
bool staysInside(std::string_view name) {
    fs::path path(name);
    return !name.empty() && name.find('\0') == std::string_view::npos && path.is_relative() &&
           std::ranges::none_of(path, [](const fs::path& component) { return component == ".."; });
}

std::string languageOnly(const std::string& language) {
    return language.substr(0, language.find_first_of("-_"));
}

/// Names of the folders to look into, best first: each language with and without its region, English last.
std::vector<std::string> languageFolders() {
    std::vector<std::string> folders;
    auto add = [&](std::string name) {
        if (isPlainPathComponent(name) && !std::ranges::count(folders, name)) folders.push_back(std::move(name));
    };
    for (const std::string& language : NSBundle::preferredLanguages()) {
        std::string hyphened = language, underscored = language;
        std::ranges::replace(hyphened, '_', '-');
        std::ranges::replace(underscored, '-', '_');
        add(hyphened + ".lproj");
        add(underscored + ".lproj");
        add(languageOnly(language) + ".lproj");
    }
    add("en.lproj");
    add("Base.lproj");
    return folders;
}

}  // namespace

const ClassInfo& NSBundle::staticClass() {
    static const ClassInfo info("NSBundle", &NSObject::staticClass(), nullptr);
    return info;
}

Ref<NSBundle> NSBundle::bundleAt(const std::string& path) {
    auto& bundle = registry().byPath[path];
    if (!bundle) bundle = make<NSBundle>(path);
    return bundle;
}

Ref<NSBundle> NSBundle::bundleWithPath(std::string_view path) {
    std::string folder = normalized(path);
    std::error_code failure;
    if (path.find('\0') != std::string_view::npos || !fs::is_directory(folder, failure)) return nullptr;
    std::lock_guard lock(registry().mutex);
    return bundleAt(folder);
}

Ref<NSBundle> NSBundle::mainBundle() {
    std::lock_guard lock(registry().mutex);
    std::string path = registry().mainPath;
    if (path.empty()) path = normalized(NSProcessInfo::executableDirectory() + "/Resources");
    return bundleAt(path);
}

void NSBundle::setMainBundlePath(std::string_view path) {
    std::string folder = path.empty() ? std::string() : normalized(path);
    std::lock_guard lock(registry().mutex);
    registry().mainPath = std::move(folder);
}

Ref<NSBundle> NSBundle::registerBundle(std::string_view identifier, std::string_view path) {
    std::string folder = normalized(path);
    std::lock_guard lock(registry().mutex);
    Ref<NSBundle> bundle = bundleAt(folder);
    {
        std::lock_guard bundleLock(bundle->mutex_);
        bundle->identifier_ = identifier;
    }
    registry().byIdentifier[std::string(identifier)] = bundle;
    return bundle;
}

Ref<NSBundle> NSBundle::bundleWithIdentifier(std::string_view identifier) {
    std::vector<Ref<NSBundle>> candidates;
    {
        std::lock_guard lock(registry().mutex);
        auto found = registry().byIdentifier.find(identifier);
        if (found != registry().byIdentifier.end()) return found->second;
        for (const auto& [path, bundle] : registry().byPath) candidates.push_back(bundle);
    }
    for (const auto& bundle : candidates) {
        if (!identifier.empty() && bundle->bundleIdentifier() == identifier) return bundle;
    }
    return nullptr;
}

std::string NSBundle::bundleIdentifier() const {
    {
        std::lock_guard lock(mutex_);
        if (!identifier_.empty()) return identifier_;
    }
    return objectForInfoDictionaryKey("CFBundleIdentifier").as<NSString>().string();
}

void NSBundle::setBuiltInFiles(std::span<const BuiltInFile> files) {
    std::lock_guard lock(mutex_);
    builtInFiles_ = files;
    info_.reset();
    stringsTables_.clear();
}

NSString NSBundle::builtInFile(std::string_view path) const {
    const auto found = std::ranges::find(builtInFiles_, path, &BuiltInFile::path);
    return found == builtInFiles_.end() ? NSString() : NSString::stringWithConstant(found->contents);
}

NSDictionary NSBundle::loadInfo() const {
    fs::path file = fs::path(path_) / "Info.plist";
    std::error_code failure;
    Value table;
    if (fs::exists(fs::symlink_status(file, failure))) {
        table = NSPropertyListSerialization::propertyListWithContentsOfFile(file.string(), &infoError_);
    } else {
        const NSString builtIn = builtInFile("Info.plist");
        if (!builtIn) return NSDictionary{};
        table = NSPropertyListSerialization::propertyListWithData(NSData::dataWithBytes(builtIn.text()), "Info.plist",
                                                                  &infoError_);
    }
    if (auto dictionary = table.as<NSDictionary>()) return dictionary;
    if (!infoError_) {
        infoError_ = NSError::errorWithDomain(NSCocoaErrorDomain, NSPropertyListReadCorruptError,
                                              file.string() + ": the information table is no dictionary");
    }
    return {};
}

NSDictionary NSBundle::infoDictionary(Ref<NSError>* error) const {
    std::lock_guard lock(mutex_);
    if (!info_) {
        NSDictionary file = loadInfo();
        NSMutableDictionary table = file ? file.mutableCopy() : NSMutableDictionary::dictionary();
        for (const auto& [key, value] : overrides_) table.setObject(value, NSString(key));
        info_ = table.copy();
    }
    if (error && infoError_) *error = infoError_;
    return *info_;
}

Value NSBundle::objectForInfoDictionaryKey(std::string_view key) const {
    return infoDictionary().objectForKey(key);
}

void NSBundle::setInfoDictionaryValue(std::string_view key, Value value) {
    std::lock_guard lock(mutex_);
    overrides_.insert_or_assign(std::string(key), std::move(value));
    info_.reset();
}

void NSBundle::resetInfoDictionaryValue(std::string_view key) {
    std::lock_guard lock(mutex_);
    std::erase_if(overrides_, [key](const auto& entry) { return entry.first == key; });
    info_.reset();
}

NSString NSBundle::pathForResource(std::string_view name, std::string_view extension) const {
    std::string fileName(name);
    if (!extension.empty()) fileName.append(".").append(extension);
    if (!staysInside(fileName)) return {};
    std::vector<fs::path> folders = {path_};
    for (const std::string& language : languageFolders()) folders.push_back(fs::path(path_) / language);
    for (const fs::path& folder : folders) {
        std::string path = (folder / fileName).string();
        if (NSFileManager::defaultManager().fileExistsAtPath(path)) return NSString(path);
    }
    return {};
}

NSString NSBundle::builtInResource(std::string_view name, std::string_view extension) const {
    std::string fileName(name);
    if (!extension.empty()) fileName.append(".").append(extension);
    const std::vector<std::string> folders = languageFolders();
    std::lock_guard lock(mutex_);
    NSString file = builtInFile(fileName);
    for (auto folder = folders.begin(); !file && folder != folders.end(); ++folder)
        file = builtInFile(*folder + "/" + fileName);
    return file;
}

const detail::StringsTable& NSBundle::stringsTable(const std::string& language, std::string_view table) const {
    std::string name = language + "/" + std::string(table) + ".strings";
    auto [entry, isNew] = stringsTables_.try_emplace(name);
    if (!isNew || !staysInside(name)) return entry->second;
    std::string path = (fs::path(path_) / name).string();
    NSData file = NSFileManager::defaultManager().contentsAtPath(path, maximumStringsFileSize);
    std::string ignored;
    entry->second = detail::parseStringsTable(file ? file.text() : builtInFile(name).text(), ignored);
    return entry->second;
}

NSString NSBundle::localizedStringForKey(std::string_view key, std::string_view value, std::string_view table) const {
    auto folders = languageFolders();
    std::lock_guard lock(mutex_);
    for (const std::string& folder : folders) {
        const auto& texts = stringsTable(folder, table.empty() ? "Localizable" : table);
        auto found = texts.find(key);
        if (found != texts.end()) return NSString(found->second);
    }
    return NSString(value.empty() ? key : value);
}

std::vector<std::string> NSBundle::preferredLanguages() {
    {
        std::lock_guard lock(registry().mutex);
        if (!registry().languages.empty()) return registry().languages;
    }
    std::string language = detail::currentLocaleIdentifier();
    std::ranges::replace(language, '_', '-');
    return {language};
}

void NSBundle::setPreferredLanguages(std::vector<std::string> languages) {
    std::lock_guard lock(registry().mutex);
    registry().languages = std::move(languages);
}

}  // namespace flarebox
