#include <Foundation/NSKeyValueObserving.h>

#include <Foundation/Immortal.h>

#include <algorithm>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace flarebox {

namespace {

struct Registration {
    std::uint64_t id;
    const NSObject* observerIdentity;
    Weak<NSObject> observer;
    std::string key;
    std::uint32_t options;
    void* context;
};

struct ObservedObject {
    std::vector<Registration> registrations;
    /// Old values between the two halves of a change; the halves of nested changes pair up from the inside.
    std::vector<std::pair<std::string, Value>> oldValues;
};

/// Who observes whom. Objects may die on any thread, so every look is under the lock; what is taken out is destroyed
/// after it, since ending a value may end further objects.
class ObserverTable {
public:
    void add(const NSObject& observed, NSObject& observer, std::string_view key, std::uint32_t options, void* context) {
        Weak<NSObject> weak(&observer);
        std::lock_guard lock(mutex_);
        table_[&observed].registrations.push_back(
            {nextId_++, &observer, std::move(weak), std::string(key), options, context});
    }

    void removeLatest(const NSObject& observed, const NSObject& observer, std::string_view key) {
        std::optional<Registration> removed;
        std::lock_guard lock(mutex_);
        auto entry = table_.find(&observed);
        if (entry == table_.end()) return;
        auto& list = entry->second.registrations;
        auto found = std::find_if(list.rbegin(), list.rend(), [&](const Registration& each) {
            return each.observerIdentity == &observer && each.key == key;
        });
        if (found == list.rend()) return;
        removed = std::move(*found);
        list.erase(std::next(found).base());
        // An entry with old values belongs to a change that is under way.
        if (list.empty() && entry->second.oldValues.empty()) table_.erase(entry);
    }

    std::vector<Registration> registrations(const NSObject& observed, std::string_view key) {
        std::vector<Registration> result;
        std::lock_guard lock(mutex_);
        auto entry = table_.find(&observed);
        if (entry == table_.end()) return result;
        std::ranges::copy_if(entry->second.registrations, std::back_inserter(result),
                             [&](const Registration& each) { return each.key == key; });
        return result;
    }

    bool isRegistered(const NSObject& observed, std::uint64_t id) {
        std::lock_guard lock(mutex_);
        auto entry = table_.find(&observed);
        return entry != table_.end() && std::ranges::any_of(entry->second.registrations,
                                                            [&](const Registration& each) { return each.id == id; });
    }

    void pushOldValue(const NSObject& observed, std::string_view key, Value value) {
        std::lock_guard lock(mutex_);
        auto entry = table_.find(&observed);
        if (entry != table_.end()) entry->second.oldValues.emplace_back(key, std::move(value));
    }

    Value popOldValue(const NSObject& observed, std::string_view key) {
        std::lock_guard lock(mutex_);
        auto entry = table_.find(&observed);
        if (entry == table_.end()) return {};
        auto& values = entry->second.oldValues;
        auto found = std::find_if(values.rbegin(), values.rend(), [&](const auto& each) { return each.first == key; });
        if (found == values.rend()) return {};
        Value value = std::move(found->second);
        values.erase(std::next(found).base());
        if (values.empty() && entry->second.registrations.empty()) table_.erase(entry);
        return value;
    }

    void forget(const NSObject* object) {
        ObservedObject dead;
        std::vector<Registration> ended;
        std::lock_guard lock(mutex_);
        if (auto entry = table_.find(object); entry != table_.end()) {
            dead = std::move(entry->second);
            table_.erase(entry);
        }
        for (auto entry = table_.begin(); entry != table_.end();) {
            auto& list = entry->second.registrations;
            auto kept = std::stable_partition(
                list.begin(), list.end(), [&](const Registration& each) { return each.observerIdentity != object; });
            std::move(kept, list.end(), std::back_inserter(ended));
            list.erase(kept, list.end());
            bool unused = list.empty() && entry->second.oldValues.empty();
            entry = unused ? table_.erase(entry) : std::next(entry);
        }
    }

private:
    std::mutex mutex_;
    std::unordered_map<const NSObject*, ObservedObject> table_;
    std::uint64_t nextId_ = 1;
};

ObserverTable& observerTable() {
    static detail::Immortal<ObserverTable> table;
    return *table;
}

bool wantsOldValue(const Registration& registration) {
    return registration.options & NSKeyValueObservingOptionOld;
}

}  // namespace

namespace detail {

void forgetObservers(NSObject* object) {
    observerTable().forget(object);
}

}  // namespace detail

void NSObject::addObserver(NSObject& observer, std::string_view keyPath, std::uint32_t options, void* context) {
    hasObservers_ = true;
    observer.hasObservers_ = true;
    observerTable().add(*this, observer, keyPath, options, context);
}

void NSObject::removeObserver(NSObject& observer, std::string_view keyPath) {
    observerTable().removeLatest(*this, observer, keyPath);
}

void NSObject::willChangeValueForKey(std::string_view key) {
    if (!hasObservers_) return;
    if (std::ranges::any_of(observerTable().registrations(*this, key), wantsOldValue)) {
        observerTable().pushOldValue(*this, key, valueForKey(key));
    }
}

void NSObject::didChangeValueForKey(std::string_view key) {
    if (!hasObservers_) return;
    auto registrations = observerTable().registrations(*this, key);
    Value oldValue = observerTable().popOldValue(*this, key);
    if (registrations.empty()) return;
    // An observer may drop the last reference to this object; one whose end has begun tells nobody any more.
    Ref<NSObject> self = Weak<NSObject>(this).lock();
    if (!self) return;
    for (const Registration& registration : registrations) {
        Ref<NSObject> observer = registration.observer.lock();
        if (!observer || !observerTable().isRegistered(*this, registration.id)) continue;
        NSKeyValueChange change;
        if (registration.options & NSKeyValueObservingOptionNew) change.newValue = valueForKey(key);
        if (wantsOldValue(registration)) change.oldValue = oldValue;
        observer->observeValueForKeyPath(key, *this, change, registration.context);
    }
}

void NSObject::observeValueForKeyPath(std::string_view, NSObject&, const NSKeyValueChange&, void*) {}

}  // namespace flarebox
