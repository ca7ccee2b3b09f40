#include <Foundation/DocumentStorage.h>

#include <Foundation/Storage.h>

#include <algorithm>
#include <atomic>
#include <vector>

namespace flarebox::detail {

using Kind = Value::Kind;
using NumberKind = ValueAccess::NumberKind;

/// The values made of one collection. The document's collections form a list, to be let go with it.
struct DocumentStorage::Collection {
    std::vector<Value> elements;
    std::vector<Entry> entries;
    std::vector<std::uint32_t> slots;
    std::unique_ptr<Collection> next;
};

DocumentStorage::DocumentStorage(std::unique_ptr<std::uint64_t[]> tape, std::unique_ptr<std::uint8_t[]> texts)
    : tape_(std::move(tape)), texts_(std::move(texts)) {}

DocumentStorage::~DocumentStorage() {
    // One after the other: a list that lets go of its rest by itself needs a stack as deep as it is long.
    while (made_) made_ = std::move(made_->next);
}

Value DocumentStorage::adopt(std::unique_ptr<DocumentStorage> document) {
    constexpr std::uint32_t rootIndex = 1;
    Value borrowed;
    document->borrow(borrowed, rootIndex);
    Value root = borrowed;
    // The copy above counts the document, if it is of it; the first reference was the caller's.
    document.release()->release();
    return root;
}

void DocumentStorage::borrow(Value& value, std::uint32_t index) const noexcept {
    const TapeWord here = word(index);
    switch (here.sort()) {
        case '"':
            return ValueAccess::borrow(value, Kind::String, *this, here.textPlace());
        case '[':
            return ValueAccess::borrow(value, Kind::Array, *this, index);
        case '{':
            return ValueAccess::borrow(value, Kind::Dictionary, *this, index);
        case 'l':
            return ValueAccess::setNumber(value, NumberKind::Signed, numberBits(index));
        case 'u':
            return ValueAccess::setNumber(value, NumberKind::Unsigned, numberBits(index));
        case 'd':
            return ValueAccess::setNumber(value, NumberKind::Floating, numberBits(index));
        case 't':
            return ValueAccess::setNumber(value, NumberKind::Boolean, 1);
        case 'f':
            return ValueAccess::setNumber(value, NumberKind::Boolean, 0);
        default:
            return ValueAccess::setEmpty(value, Kind::Null);
    }
}

std::span<const Value> DocumentStorage::elementsAt(std::uint32_t index) const {
    return collectionAt(index).elements;
}

std::span<const DocumentStorage::Entry> DocumentStorage::entriesAt(std::uint32_t index) const {
    return collectionAt(index).entries;
}

std::uint32_t DocumentStorage::indexOfKey(std::uint32_t index, std::string_view key) const noexcept {
    std::uint32_t found = 0;
    const std::uint32_t last = word(index).end() - 1;
    for (std::uint32_t at = index + 1; at < last; at = after(at + 1)) {
        if (textAt(word(at).textPlace()) == key) found = at + 1;
    }
    return found;
}

std::uint32_t DocumentStorage::indexOfElement(std::uint32_t index, std::size_t position) const noexcept {
    const std::uint32_t last = word(index).end() - 1;
    std::uint32_t at = index + 1;
    for (; at < last && position > 0; --position) at = after(at);
    return at < last ? at : 0;
}

Value DocumentStorage::valueForKey(std::uint32_t index, std::string_view key) const {
    if (word(index).count() <= smallCollection) return valueAt(indexOfKey(index, key));
    const Collection& collection = collectionAt(index);
    const auto matches = [&](std::size_t at) { return ValueAccess::text(collection.entries[at].first) == key; };
    const std::size_t at = HashSlots::find(collection.slots, hashText(key), matches);
    return at == HashSlots::notFound ? Value() : collection.entries[at].second;
}

Value DocumentStorage::elementAt(std::uint32_t index, std::size_t position) const {
    if (position < smallCollection) return valueAt(indexOfElement(index, position));
    const auto elements = elementsAt(index);
    return position < elements.size() ? elements[position] : Value();
}

Value DocumentStorage::valueAt(std::uint32_t index) const {
    Value borrowed;
    if (index != 0) borrow(borrowed, index);
    return Value(static_cast<const Value&>(borrowed));
}

const DocumentStorage::Collection& DocumentStorage::collectionAt(std::uint32_t index) const {
    const std::atomic_ref<std::uint64_t> closing(tape_[word(index).end() - 1]);
    // The sort of a closing word is where an address has zeros.
    const auto made = [](std::uint64_t bits) {
        const auto address = static_cast<std::uintptr_t>(bits);
        return TapeWord(bits).sort() == 0 ? reinterpret_cast<const Collection*>(address) : nullptr;
    };
    if (const Collection* collection = made(closing.load(std::memory_order_acquire))) return *collection;

    const std::lock_guard lock(making_);
    if (const Collection* collection = made(closing.load(std::memory_order_relaxed))) return *collection;
    auto collection = word(index).sort() == '[' ? makeArray(index) : makeDictionary(index);
    collection->next = std::move(made_);
    made_ = std::move(collection);
    closing.store(reinterpret_cast<std::uintptr_t>(made_.get()), std::memory_order_release);
    return *made_;
}

std::size_t DocumentStorage::elementCount(std::uint32_t index) const {
    if (word(index).count() < TapeWord::manyElements) return word(index).count();
    const std::uint32_t last = word(index).end() - 1;
    std::size_t count = 0;
    for (std::uint32_t at = index + 1; at < last; at = after(at)) ++count;
    return word(index).sort() == '{' ? count / 2 : count;
}

std::unique_ptr<DocumentStorage::Collection> DocumentStorage::makeArray(std::uint32_t index) const {
    auto collection = std::make_unique<Collection>();
    collection->elements.resize(elementCount(index));
    std::uint32_t at = index + 1;
    for (Value& element : collection->elements) {
        borrow(element, at);
        at = after(at);
    }
    return collection;
}

std::unique_ptr<DocumentStorage::Collection> DocumentStorage::makeDictionary(std::uint32_t index) const {
    auto collection = std::make_unique<Collection>();
    std::vector<Entry>& entries = collection->entries;
    std::vector<std::uint32_t>& slots = collection->slots;
    const std::size_t count = elementCount(index);
    entries.reserve(count);
    if (count > smallCollection) slots.resize(HashSlots::slotsFor(count));

    const std::uint32_t last = word(index).end() - 1;
    for (std::uint32_t at = index + 1; at < last; at = after(at + 1)) {
        const std::string_view key = textAt(word(at).textPlace());
        const auto matches = [&](std::size_t known) { return ValueAccess::text(entries[known].first) == key; };
        const std::size_t hash = slots.empty() ? 0 : hashText(key);
        std::size_t place = 0;
        if (slots.empty())
            while (place < entries.size() && !matches(place)) ++place;
        else
            place = std::min(HashSlots::find(slots, hash, matches), entries.size());
        if (place == entries.size()) {
            if (!slots.empty()) HashSlots::insert(slots, hash, place);
            borrow(entries.emplace_back().first, at);
        }
        borrow(entries[place].second, at + 1);
    }
    return collection;
}

}  // namespace flarebox::detail
