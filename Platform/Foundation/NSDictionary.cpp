#include <Foundation/Storage.h>
#include <Foundation/Values.h>

#include <algorithm>

namespace flarebox {
namespace {

using detail::DictionaryStorage;
using detail::HashSlots;
using detail::ValueAccess;
using Entry = NSDictionary::Entry;

Value dictionaryValue(std::vector<Entry> entries, bool isMutable) {
    auto storage = std::make_unique<DictionaryStorage>();
    storage->entries.reserve(entries.size());
    for (Entry& entry : entries) {
        if (entry.second) storage->set(std::move(entry.second), entry.first);
    }
    return ValueAccess::adopt(Value::Kind::Dictionary, storage.release(), isMutable);
}

/// Entries that are known to be distinct.
Value copiedValue(std::span<const Entry> entries, bool isMutable) {
    auto storage = std::make_unique<DictionaryStorage>();
    storage->entries.assign(entries.begin(), entries.end());
    return ValueAccess::adopt(Value::Kind::Dictionary, storage.release(), isMutable);
}

Value find(const Value& dictionary, std::string_view key) {
    if (!ValueAccess::isInDocument(dictionary)) {
        const auto& storage = ValueAccess::storage<DictionaryStorage>(dictionary);
        const std::size_t at =
            storage.find(key, storage.entries.size() > detail::smallCollection ? detail::hashText(key) : 0);
        return at == HashSlots::notFound ? Value() : storage.entries[at].second;
    }
    return ValueAccess::document(dictionary).valueForKey(ValueAccess::place(dictionary), key);
}

}  // namespace

NSDictionary::NSDictionary(std::initializer_list<Entry> entries) : Value(dictionaryValue(entries, false)) {}

NSDictionary NSDictionary::dictionaryWithEntries(std::vector<Entry> entries) {
    return NSDictionary(dictionaryValue(std::move(entries), false), Checked{});
}

std::span<const Entry> NSDictionary::entries() const noexcept {
    if (!*this) return {};
    if (ValueAccess::isInDocument(*this)) return ValueAccess::document(*this).entriesAt(extra_);
    return ValueAccess::storage<DictionaryStorage>(*this).entries;
}

Value NSDictionary::objectForKey(std::string_view key) const noexcept {
    return *this ? find(*this, key) : Value();
}

Value NSDictionary::objectForKey(const Value& key) const noexcept {
    if (!*this || !key) return {};
    if (key.kind() == Kind::String) return find(*this, ValueAccess::text(key));
    if (ValueAccess::isInDocument(*this)) return {};
    const auto& storage = ValueAccess::storage<DictionaryStorage>(*this);
    const std::size_t at = storage.find(key, key.hash());
    return at == HashSlots::notFound ? Value() : storage.entries[at].second;
}

NSArray NSDictionary::allKeys() const {
    std::vector<Value> keys;
    keys.reserve(count());
    for (const Entry& entry : entries()) keys.push_back(entry.first);
    return NSArray::arrayWithValues(std::move(keys));
}

NSArray NSDictionary::allValues() const {
    std::vector<Value> values;
    values.reserve(count());
    for (const Entry& entry : entries()) values.push_back(entry.second);
    return NSArray::arrayWithValues(std::move(values));
}

NSDictionary NSDictionary::copy() const {
    if (!isMutable_) return *this;
    return NSDictionary(copiedValue(entries(), false), Checked{});
}

NSMutableDictionary NSDictionary::mutableCopy() const {
    if (!*this) return {};
    return NSMutableDictionary(copiedValue(entries(), true), NSMutableDictionary::Checked{});
}

NSMutableDictionary NSMutableDictionary::dictionary() {
    return NSMutableDictionary(copiedValue({}, true), Checked{});
}

void NSMutableDictionary::setObject(Value value, const Value& key) {
    if (*this) ValueAccess::storage<DictionaryStorage>(*this).set(std::move(value), key);
}

void NSMutableDictionary::removeObjectForKey(const Value& key) {
    if (*this) ValueAccess::storage<DictionaryStorage>(*this).remove(key);
}

}  // namespace flarebox
