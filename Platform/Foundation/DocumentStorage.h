#pragma once

// What the values of a decoded document share. For the sources of this folder and of the mapping only.

#include <Foundation/Values.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>

namespace flarebox::detail {

/// A word of a document's tape. The tape names every element in the order of the document: a word for a text, a truth
/// value or a null, two for a number, and a pair of words around the elements of a collection.
class TapeWord {
public:
    constexpr explicit TapeWord(std::uint64_t bits) noexcept : bits_(bits) {}

    /// '"', 'l', 'u', 'd', 't', 'f', 'n', '[' or '{': what begins here. The word after an 'l', 'u' or 'd' holds the
    /// number.
    char sort() const noexcept { return static_cast<char>(bits_ >> 56); }
    /// The place of a text.
    std::uint32_t textPlace() const noexcept { return static_cast<std::uint32_t>(bits_); }
    /// The index behind the closing word of a collection.
    std::uint32_t end() const noexcept { return static_cast<std::uint32_t>(bits_); }
    /// The number of elements or entries, equal keys included, up to `manyElements`, which stands for any more.
    std::uint32_t count() const noexcept { return static_cast<std::uint32_t>(bits_ >> 32) & manyElements; }
    static constexpr std::uint32_t manyElements = 0xFFFFFF;

private:
    std::uint64_t bits_;
};

/// A decoded document: the tape that the parser has left and a block of all texts. Values are made of a collection only
/// when somebody looks into it, once; they refer to the document without counting it, so it is let go as a whole,
/// however deep and large it is. Any thread.
class DocumentStorage final : public Storage {
public:
    using Entry = NSDictionary::Entry;
    /// So many bytes may be read beyond the last text.
    static constexpr std::size_t textPadding = 32;

    DocumentStorage(std::unique_ptr<std::uint64_t[]> tape, std::unique_ptr<std::uint8_t[]> texts);
    ~DocumentStorage() override;

    /// The document as a value that keeps it.
    static Value adopt(std::unique_ptr<DocumentStorage> document);

    // --- The tape ---

    TapeWord word(std::uint32_t index) const noexcept { return TapeWord(tape_[index]); }
    std::uint64_t numberBits(std::uint32_t index) const noexcept { return tape_[index + 1]; }
    /// The index of what follows the element at `index`.
    std::uint32_t after(std::uint32_t index) const noexcept {
        const TapeWord here = word(index);
        switch (here.sort()) {
            case '[':
            case '{':
                return here.end();
            case 'l':
            case 'u':
            case 'd':
                return index + 2;
            default:
                return index + 1;
        }
    }
    /// The index of the value of a dictionary's key, or of an element of an array; 0 when there is none.
    std::uint32_t indexOfKey(std::uint32_t index, std::string_view key) const noexcept;
    std::uint32_t indexOfElement(std::uint32_t index, std::size_t position) const noexcept;
    /// The number of elements or entries of a collection, equal keys included.
    std::size_t elementCount(std::uint32_t index) const;
    /// Overwrites a value with the element at `index`, without counting the document.
    void borrow(Value& value, std::uint32_t index) const noexcept;

    // --- Texts: at each place the length in 32 bits, then the bytes ---

    const std::uint8_t* textStart(std::uint32_t place) const noexcept { return texts_.get() + place; }
    std::string_view textAt(std::uint32_t place) const noexcept {
        std::uint32_t length;
        std::memcpy(&length, textStart(place), sizeof length);
        return {reinterpret_cast<const char*>(textStart(place)) + sizeof length, length};
    }

    // --- Values of the collection whose opening word is at `index` ---

    std::span<const Value> elementsAt(std::uint32_t index) const;
    /// Of equal keys the last one wins, at the place of the first.
    std::span<const Entry> entriesAt(std::uint32_t index) const;
    /// The value of a dictionary's key, absent when there is none. Makes nothing of a small dictionary.
    Value valueForKey(std::uint32_t index, std::string_view key) const;
    /// An element of an array, absent beyond its end. Makes nothing of the array for the first few.
    Value elementAt(std::uint32_t index, std::size_t position) const;

private:
    struct Collection;

    const Collection& collectionAt(std::uint32_t index) const;
    std::unique_ptr<Collection> makeArray(std::uint32_t index) const;
    std::unique_ptr<Collection> makeDictionary(std::uint32_t index) const;
    /// A value that counts the document; absent at 0.
    Value valueAt(std::uint32_t index) const;

    /// The closing word of a collection gives way to the address of its values once they are made.
    std::unique_ptr<std::uint64_t[]> tape_;
    std::unique_ptr<std::uint8_t[]> texts_;
    mutable std::mutex making_;
    mutable std::unique_ptr<Collection> made_;
};

}  // namespace flarebox::detail
