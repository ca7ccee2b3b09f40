#include <Foundation/Immortal.h>
#include <Foundation/MainQueue.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSProcessInfo.h>
#include <Foundation/NSPropertyListSerialization.h>
#include <Foundation/NSUserDefaults.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

namespace flarebox {

namespace {

NSFileManager& files() {
    return NSFileManager::defaultManager();
}

/// Keeps a damaged file for whoever can still read it. False when it has to stay where it is.
bool moveAside(const std::string& file) {
    constexpr int maximumKept = 100;
    for (int number = 0; number < maximumKept; ++number) {
        std::string name = file + ".corrupt";
        if (number > 0) name.append("-").append(std::to_string(number));
        if (files().moveItemAtPath(file, name)) return true;
        if (!files().fileExistsAtPath(name)) return false;
    }
    return false;
}

bool readsAsTrue(std::string_view text) {
    auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return false;
    if (text[first] == '+' || text[first] == '-') ++first;
    first = text.find_first_not_of('0', first);
    return first != std::string_view::npos &&
           std::string_view("YyTt123456789").find(text[first]) != std::string_view::npos;
}

}  // namespace

NSUserDefaults& NSUserDefaults::standardUserDefaults() {
    static detail::Immortal<NSUserDefaults> defaults;
    // Immortal objects are never destroyed, so their last changes are written by a handler of their own.
    [[maybe_unused]] static const int registered = std::atexit([] { standardUserDefaults().synchronize(); });
    return *defaults;
}

void NSUserDefaults::loadOnce() const {
    if (isLoaded_) return;
    std::string directory = NSProcessInfo::processInfo().configurationDirectory();
    load(directory.empty() ? std::string() : directory + "/UserDefaults.plist");
}

bool NSUserDefaults::load(std::string file) const {
    isLoaded_ = true;
    file_ = std::move(file);
    values_.clear();
    lastError_ = nullptr;
    std::error_code ignored;
    if (file_.empty() || !std::filesystem::exists(std::filesystem::symlink_status(file_, ignored))) return true;
    auto table = NSPropertyListSerialization::propertyListWithContentsOfFile(file_, &lastError_).as<NSDictionary>();
    if (table) {
        for (const auto& [key, value] : table.entries()) values_.insert_or_assign(key.as<NSString>().string(), value);
        return true;
    }
    bool isUnreadable = lastError_ && lastError_->code() != NSPropertyListReadCorruptError;
    if (!lastError_) {
        lastError_ = NSError::errorWithDomain(NSCocoaErrorDomain, NSPropertyListReadCorruptError,
                                              file_ + ": the settings are no dictionary");
    }
    // What can be neither read nor moved away must not be written over.
    if (isUnreadable || !moveAside(file_)) file_.clear();
    return false;
}

bool NSUserDefaults::save() {
    if (!isDirty_ || file_.empty()) return true;
    std::vector<NSDictionary::Entry> entries;
    for (const auto& [key, value] : values_) entries.emplace_back(NSString(key), value);
    Ref<NSError> error;
    NSData contents = NSPropertyListSerialization::dataWithPropertyList(
        NSDictionary::dictionaryWithEntries(std::move(entries)), &error);
    std::string directory = std::filesystem::path(file_).parent_path().string();
    bool saved = contents && (directory.empty() || files().createDirectoryAtPath(directory, true, &error)) &&
                 files().writeAtomically(contents.text(), file_, &error);
    isDirty_ = !saved;
    lastError_ = error;
    return saved;
}

void NSUserDefaults::changed() {
    isDirty_ = true;
    if (isSaveScheduled_.exchange(true)) return;
    // Says so too when the queue drops the work without running it.
    std::shared_ptr<void> scheduled(nullptr, [this](void*) { isSaveScheduled_ = false; });
    MainQueue::shared().async([this, scheduled = std::move(scheduled)]() mutable {
        scheduled.reset();
        synchronize();
    });
}

bool NSUserDefaults::setFile(std::string_view path) {
    std::lock_guard lock(mutex_);
    save();
    isDirty_ = false;
    return load(std::string(path));
}

std::string NSUserDefaults::file() const {
    std::lock_guard lock(mutex_);
    loadOnce();
    return file_;
}

Value NSUserDefaults::objectForKey(std::string_view key) const {
    std::lock_guard lock(mutex_);
    loadOnce();
    auto found = values_.find(key);
    return found == values_.end() ? Value() : found->second;
}

NSString NSUserDefaults::stringForKey(std::string_view key) const {
    Value value = objectForKey(key);
    if (auto number = value.as<NSNumber>()) return NSString(number.stringValue());
    return value.as<NSString>();
}

std::int64_t NSUserDefaults::integerForKey(std::string_view key) const {
    Value value = objectForKey(key);
    if (auto text = value.as<NSString>()) return text.integerValue();
    return value.as<NSNumber>().integerValue();
}

double NSUserDefaults::doubleForKey(std::string_view key) const {
    Value value = objectForKey(key);
    if (auto text = value.as<NSString>()) return text.doubleValue();
    return value.as<NSNumber>().doubleValue();
}

bool NSUserDefaults::boolForKey(std::string_view key) const {
    Value value = objectForKey(key);
    if (auto text = value.as<NSString>()) return readsAsTrue(text.text());
    return value.as<NSNumber>().boolValue();
}

bool NSUserDefaults::setObject(const Value& value, std::string_view key) {
    if (!value) {
        removeObjectForKey(key);
        return true;
    }
    // By way of the text: what is kept is what a later start will read, and no mutable part is shared with the caller.
    Ref<NSError> error;
    NSData text = NSPropertyListSerialization::dataWithPropertyList(NSDictionary({{NSString(key), value}}), &error);
    Value copy = NSPropertyListSerialization::propertyListWithData(text, {}, &error);
    std::lock_guard lock(mutex_);
    loadOnce();
    lastError_ = error;
    if (error) return false;
    values_.insert_or_assign(std::string(key), copy.as<NSDictionary>().objectForKey(key));
    changed();
    return true;
}

void NSUserDefaults::removeObjectForKey(std::string_view key) {
    Value removed;
    std::lock_guard lock(mutex_);
    loadOnce();
    auto found = values_.find(key);
    if (found == values_.end()) return;
    removed = std::move(found->second);
    values_.erase(found);
    changed();
}

bool NSUserDefaults::synchronize() {
    std::lock_guard lock(mutex_);
    return save();
}

Ref<NSError> NSUserDefaults::lastError() const {
    std::lock_guard lock(mutex_);
    loadOnce();
    return lastError_;
}

}  // namespace flarebox
