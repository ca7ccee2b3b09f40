#pragma once

// What the handles of Value.h and Values.h keep alive. For the sources of this folder only.

#include <Foundation/Hash.h>
#include <Foundation/Values.h>

#include <cstdlib>
#include <cstring>
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
    std::span<const std::uint32_t> slots(std::size_t count, const HashAt& hashAt) const {
        const Slots* current = slots_.load(std::memory_order_acquire);
        if (current) return *current;
        auto built = std::make_unique<Slots>(HashSlots::slotsFor(count), 0);
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
        return HashSlots::find(
            index_.slots(entries.size(), [this](std::size_t at) { return entries[at].first.hash(); }), hash, matches);
    }
    void set(Value value, const Value& key);
    void remove(const Value& key);

    static bool matchesKey(const Value& candidate, const Value& key) noexcept { return candidate == key; }
    static bool matchesKey(const Value& candidate, std::string_view key) noexcept;

    std::vector<Entry> entries;

private:
    LazyIndex index_;
};

/// A decoded document: all of its texts in one block, all of its collections in another. The elements of collections
/// refer to the document without counting it, so it is let go as a whole, however deep and large it is.
class DocumentStorage final : public Storage {
public:
    /// What stands before the elements of a collection. Places are counted in units of 8 bytes.
    struct Node {
        std::uint32_t count;
        /// Place of the key index: the number of slots, then the slots. 0 when the dictionary is small.
        std::uint32_t index;
    };
    static constexpr std::size_t unit = 8;

    std::string_view textAt(std::uint32_t offset) const noexcept {
        std::uint32_t length;
        std::memcpy(&length, texts.get() + offset, sizeof length);
        return {reinterpret_cast<const char*>(texts.get()) + offset + sizeof length, length};
    }
    const Node& nodeAt(std::uint32_t place) const noexcept {
        return *reinterpret_cast<const Node*>(nodes.get() + place * unit);
    }
    template <class Element>
    std::span<const Element> elementsAt(std::uint32_t place) const noexcept {
        const Node& node = nodeAt(place);
        return {reinterpret_cast<const Element*>(&node + 1), node.count};
    }
    std::span<const std::uint32_t> slotsAt(std::uint32_t place) const noexcept {
        const Node& node = nodeAt(place);
        if (node.index == 0) return {};
        const auto* slots = reinterpret_cast<const std::uint32_t*>(nodes.get() + node.index * unit);
        return {slots + 1, *slots};
    }

    /// Memory that grew by realloc.
    struct Free {
        void operator()(std::byte* memory) const noexcept { std::free(memory); }
    };
    using Nodes = std::unique_ptr<std::byte, Free>;

    std::unique_ptr<std::uint8_t[]> texts;
    Nodes nodes;
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
    /// Makes, in raw memory of the document, a value that does not count the document.
    static void borrow(void* memory, Kind kind, DocumentStorage* document, std::uint32_t place) noexcept {
        auto* value = ::new (memory) Value();
        value->kind_ = kind;
        value->holding_ = Holding::Borrowed;
        value->extra_ = place;
        value->payload_.storage = document;
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
    static std::uint32_t place(const Value& value) noexcept { return value.extra_; }
    static const DocumentStorage& document(const Value& value) noexcept {
        return *static_cast<const DocumentStorage*>(value.payload_.storage);
    }
    template <class T>
    static T& storage(const Value& value) noexcept {
        return *static_cast<T*>(value.payload_.storage);
    }
    static double seconds(const Value& value) noexcept { return value.payload_.floating; }

    /// The bytes of a text or of a link.
    static std::string_view text(const Value& value) noexcept {
        if (isInDocument(value)) return document(value).textAt(value.extra_);
        if (value.holding_ == Holding::Block) return storage<TextStorage>(value).text();
        return {value.payload_.text, value.extra_};
    }
    /// The elements of an array or of a set.
    static std::span<const Value> list(const Value& value) noexcept {
        if (isInDocument(value)) return document(value).elementsAt<Value>(value.extra_);
        return storage<ListStorage>(value).values;
    }
};

}  // namespace flarebox::detail
