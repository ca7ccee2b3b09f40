#pragma once

// What the handles of Value.h and Values.h keep alive. For the sources of this folder and of the mapping only.

#include <Foundation/DocumentStorage.h>
#include <Foundation/Hash.h>
#include <Foundation/Values.h>

#include <bit>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace flarebox::detail {

/// The characters follow the object in the same allocation.
class TextStorage final : public Storage {
public:
    static TextStorage* create(std::string_view text);
    static void operator delete(void* memory) { ::operator delete(memory); }

    std::string_view text() const noexcept { return {reinterpret_cast<const char*>(this + 1), length_}; }

private:
    explicit TextStorage(std::size_t length) : length_(length) {}
    std::size_t length_;
};

class DataStorage final : public Storage {
public:
    explicit DataStorage(std::string bytes) : bytes_(std::move(bytes)) {}
    const std::string& bytes() const noexcept { return bytes_; }
    std::size_t readableBehind() const noexcept { return bytes_.capacity() - bytes_.size(); }

private:
    std::string bytes_;
};

/// A hash index that is built by the first look-up, whichever threads look, and dropped by changes it cannot follow.
class LazyIndex {
public:
    LazyIndex() = default;
    LazyIndex(const LazyIndex&) = delete;
    LazyIndex& operator=(const LazyIndex&) = delete;
    ~LazyIndex() { drop(); }

    template <class HashAt>
    std::span<const std::uint32_t> slots(std::size_t count, std::size_t capacity, const HashAt& hashAt) const {
        const Slots* current = slots_.load(std::memory_order_acquire);
        if (current) return *current;
        auto built = std::make_unique<Slots>(HashSlots::slotsFor(capacity), 0);
        for (std::size_t i = 0; i < count; ++i) HashSlots::insert(*built, hashAt(i), i);
        Slots* expected = nullptr;
        if (slots_.compare_exchange_strong(expected, built.get(), std::memory_order_acq_rel)) return *built.release();
        return *expected;
    }
    /// Follows an element appended at `position`.
    void append(std::size_t hash, std::size_t position) {
        Slots* current = slots_.load(std::memory_order_relaxed);
        if (!current) return;
        if (current->size() < HashSlots::slotsFor(position + 1)) return drop();
        HashSlots::insert(*current, hash, position);
    }
    void drop() noexcept { delete slots_.exchange(nullptr); }

private:
    using Slots = std::vector<std::uint32_t>;
    mutable std::atomic<Slots*> slots_{nullptr};
};

/// Arrays and sets.
class ListStorage final : public Storage {
public:
    explicit ListStorage(std::vector<Value> list) : values(std::move(list)) {}
    /// Position of an equal element, or HashSlots::notFound.
    std::size_t find(const Value& value) const;
    /// Adds the value unless an equal one is there.
    void addDistinct(Value value);

    std::vector<Value> values;

private:
    LazyIndex index_;
};

class DictionaryStorage final : public Storage {
public:
    using Entry = NSDictionary::Entry;

    template <class Key>
    std::size_t find(const Key& key, std::size_t hash) const {
        auto matches = [&](std::size_t at) { return matchesKey(entries[at].first, key); };
        if (entries.size() <= smallCollection) {
            for (std::size_t i = 0; i < entries.size(); ++i) {
                if (matches(i)) return i;
            }
            return HashSlots::notFound;
        }
        return HashSlots::find(index_.slots(entries.size(), entries.capacity(),
                                            [this](std::size_t at) { return entries[at].first.hash(); }),
                               hash, matches);
    }
    void set(Value value, const Value& key);
    void remove(const Value& key);

    static bool matchesKey(const Value& candidate, const Value& key) noexcept { return candidate == key; }
    static bool matchesKey(const Value& candidate, std::string_view key) noexcept;

    std::vector<Entry> entries;
    /// The document that values among the entries borrow from.
    Value document;
    /// The keys as they are written, when they are known beforehand; null otherwise.
    const class JSONKeys* readyKeys = nullptr;

private:
    LazyIndex index_;
};

/// The way into a Value for the sources of this folder.
struct ValueAccess {
    using Kind = Value::Kind;
    using Holding = Value::Holding;
    using NumberKind = Value::NumberKind;

    /// A value over a storage of its own, taking over the reference that comes with a new storage.
    static Value adopt(Kind kind, Storage* storage, bool isMutable = false) noexcept {
        Value value;
        value.kind_ = kind;
        value.holding_ = Holding::Block;
        value.isMutable_ = isMutable;
        value.payload_.storage = storage;
        return value;
    }
    /// Overwrites a value with the other one; what borrows from a document goes on doing so.
    static void borrowLike(Value& value, const Value& other) noexcept {
        if (other.holding_ > Holding::Borrowed) {
            value = other;
            return;
        }
        setBits(value, other.kind_, other.numberKind_, other.payload_.bits);
        value.holding_ = other.holding_;
        value.extra_ = other.extra_;
    }
    /// A dictionary of entries that are known to be distinct, some of which may borrow from the document. The ready
    /// keys, of which there may be none, outlive the process.
    static NSDictionary dictionaryOver(std::vector<NSDictionary::Entry> entries, const Value& document,
                                       const JSONKeys& keys) {
        auto storage = std::make_unique<DictionaryStorage>();
        storage->entries = std::move(entries);
        storage->document = document;
        storage->readyKeys = &keys;
        return NSDictionary(adopt(Kind::Dictionary, storage.release()), NSDictionary::Checked{});
    }
    static Value constant(std::string_view text) noexcept {
        Value value;
        value.kind_ = Kind::String;
        value.extra_ = static_cast<std::uint32_t>(text.size());
        value.payload_.text = text.data();
        return value;
    }
    static Value date(double seconds) noexcept {
        Value value;
        value.kind_ = Kind::Date;
        value.payload_.floating = seconds;
        return value;
    }
    /// The same storage read as another kind: a link over its text.
    static Value as(Kind kind, Value value) noexcept {
        value.kind_ = kind;
        return value;
    }

    static bool isMutable(const Value& value) noexcept { return value.isMutable_; }
    static NumberKind numberKind(const Value& value) noexcept { return value.numberKind_; }
    static bool isInDocument(const Value& value) noexcept {
        return value.holding_ == Holding::Document || value.holding_ == Holding::Borrowed;
    }
    /// Where in its document a value is: the place of a text, the tape index of a collection.
    static std::uint32_t place(const Value& value) noexcept { return value.extra_; }
    static const DocumentStorage& document(const Value& value) noexcept {
        return *static_cast<const DocumentStorage*>(value.payload_.storage);
    }

    // The following overwrite a value with part of a document, which they do not count.

    static void borrow(Value& value, Kind kind, const DocumentStorage& document, std::uint32_t place) noexcept {
        if (value.holding_ > Holding::Borrowed) value.release();
        value.payload_.storage = const_cast<DocumentStorage*>(&document);
        value.kind_ = kind;
        value.numberKind_ = NumberKind::Boolean;
        value.isMutable_ = false;
        value.holding_ = Holding::Borrowed;
        value.extra_ = place;
    }
    static void setNumber(Value& value, NumberKind numberKind, std::uint64_t bits) noexcept {
        setBits(value, Kind::Number, numberKind, bits);
    }
    static void setDate(Value& value, double seconds) noexcept {
        setBits(value, Kind::Date, NumberKind::Boolean, std::bit_cast<std::uint64_t>(seconds));
    }
    static void setEmpty(Value& value, Kind kind) noexcept { setBits(value, kind, NumberKind::Boolean, 0); }

    template <class T>
    static T& storage(const Value& value) noexcept {
        return *static_cast<T*>(value.payload_.storage);
    }
    static std::uint64_t numberBits(const Value& value) noexcept { return value.payload_.bits; }
    static double seconds(const Value& value) noexcept { return value.payload_.floating; }

    /// The bytes of a text or of a link.
    static std::string_view text(const Value& value) noexcept {
        if (isInDocument(value)) return document(value).textAt(value.extra_);
        if (value.holding_ == Holding::Block) return storage<TextStorage>(value).text();
        return {value.payload_.text, value.extra_};
    }
    /// Null when there are none for these very entries.
    static const JSONKeys* readyKeys(const NSDictionary& dictionary) noexcept;

    /// How many bytes behind those of the data may be read, whatever they are.
    static std::size_t readableBehind(const NSData& data) noexcept {
        return data ? storage<DataStorage>(data).readableBehind() : 0;
    }
    /// The elements of an array or of a set.
    static std::span<const Value> list(const Value& value) noexcept {
        if (isInDocument(value)) return document(value).elementsAt(value.extra_);
        return storage<ListStorage>(value).values;
    }

private:
    static void setBits(Value& value, Kind kind, NumberKind numberKind, std::uint64_t bits) noexcept {
        if (value.holding_ > Holding::Borrowed) value.release();
        value.payload_.bits = bits;
        value.kind_ = kind;
        value.numberKind_ = numberKind;
        value.isMutable_ = false;
        value.holding_ = Holding::Nothing;
        value.extra_ = 0;
    }
};

}  // namespace flarebox::detail
