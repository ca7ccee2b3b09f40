#include <Foundation/JSONWriter.h>
#include <Foundation/Storage.h>

#include <new>

namespace flarebox::detail {
namespace {

// The storages that wait for the destruction under way on this thread.
thread_local constinit Storage* waiting = nullptr;
thread_local constinit bool isDestroying = false;

}  // namespace

void Storage::destroy() noexcept {
    nextToDestroy_ = std::exchange(waiting, this);
    if (isDestroying) return;
    isDestroying = true;
    while (Storage* storage = waiting) {
        waiting = storage->nextToDestroy_;
        delete storage;
    }
    isDestroying = false;
}

const JSONKeys* ValueAccess::readyKeys(const NSDictionary& dictionary) noexcept {
    if (isInDocument(dictionary)) return nullptr;
    const auto& entries = storage<DictionaryStorage>(dictionary);
    return entries.readyKeys && entries.readyKeys->count() == entries.entries.size() ? entries.readyKeys : nullptr;
}

TextStorage* TextStorage::create(std::string_view text) {
    void* memory = ::operator new(sizeof(TextStorage) + text.size());
    auto* storage = ::new (memory) TextStorage(text.size());
    std::memcpy(static_cast<void*>(storage + 1), text.data(), text.size());
    return storage;
}

std::size_t ListStorage::find(const Value& value) const {
    auto matches = [&](std::size_t at) { return values[at] == value; };
    if (values.size() <= smallCollection) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (matches(i)) return i;
        }
        return HashSlots::notFound;
    }
    auto hashAt = [this](std::size_t at) { return values[at].hash(); };
    return HashSlots::find(index_.slots(values.size(), values.capacity(), hashAt), value.hash(), matches);
}

void ListStorage::addDistinct(Value value) {
    if (!value || find(value) != HashSlots::notFound) return;
    index_.append(value.hash(), values.size());
    values.push_back(std::move(value));
}

bool DictionaryStorage::matchesKey(const Value& candidate, std::string_view key) noexcept {
    return candidate.kind() == Value::Kind::String && ValueAccess::text(candidate) == key;
}

void DictionaryStorage::set(Value value, const Value& key) {
    if (!value) return remove(key);
    if (!key) return;
    const std::size_t hash = key.hash();
    const std::size_t at = find(key, hash);
    if (at != HashSlots::notFound) {
        entries[at].second = std::move(value);
        return;
    }
    index_.append(hash, entries.size());
    entries.emplace_back(key, std::move(value));
}

void DictionaryStorage::remove(const Value& key) {
    const std::size_t at = find(key, key.hash());
    if (at == HashSlots::notFound) return;
    index_.drop();
    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(at));
}

}  // namespace flarebox::detail
