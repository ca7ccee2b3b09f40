#pragma once

#include <Foundation/Values.h>

#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox::detail {

/// Text that grows at its end, written through a pointer.
class GrowingText {
public:
    /// Appends to `text`, which is not to be touched until `finish`.
    explicit GrowingText(std::string& text) : text_(text), size_(text.size()) {}

    /// Room for that many bytes at the end; `commit` says how far it was used.
    char* reserve(std::size_t bytes) {
        if (text_.size() - size_ < bytes) grow(bytes);
        return text_.data() + size_;
    }
    std::size_t length() const { return size_; }
    void commit(const char* end) { size_ = static_cast<std::size_t>(end - text_.data()); }
    void append(std::string_view text) {
        char* const end = reserve(text.size());
        commit(end + text.copy(end, text.size()));
    }
    void append(char character) {
        *reserve(1) = character;
        ++size_;
    }
    /// Appends a short text; so much more may be read behind it.
    static constexpr std::size_t padding = 32;
    void appendPadded(const char* text, std::size_t length) {
        char* const end = reserve(length + padding);
        for (std::size_t at = 0; at < length; at += padding) std::memcpy(end + at, text + at, padding);
        size_ += length;
    }
    void finish() { text_.resize(size_); }

private:
    void grow(std::size_t bytes);

    std::string& text_;
    std::size_t size_;
};

/// The keys of dictionaries that are written again and again, made ready once: `,"key":` for each.
class JSONKeys {
public:
    JSONKeys() = default;
    /// The keys of a dictionary. Stays empty when not all of them are well-formed texts.
    explicit JSONKeys(const NSDictionary& dictionary);

    std::size_t count() const { return ends_.size(); }
    void append(std::size_t position, GrowingText& text) const {
        // The first key follows no other.
        const std::size_t start = position == 0 ? 1 : ends_[position - 1];
        text.appendPadded(texts_.data() + start, ends_[position] - start);
    }

private:
    std::string texts_;
    std::vector<std::size_t> ends_;
};

/// Writes values as JSON without blanks, dictionaries in the order of their entries.
class JSONWriter {
public:
    JSONWriter(std::string& text, int maximumDepth) : text_(text), maximumDepth_(maximumDepth) {}

    /// False when the value has no JSON form; what was written by then is of no use.
    bool write(const Value& value);
    /// The key of an entry with what stands around it.
    bool key(const Value& key, bool isFirst);
    /// The length of the text so far.
    std::size_t length() const { return text_.length(); }
    /// To be called once after writing.
    void finish() { text_.finish(); }
    /// Why writing failed and at which key path.
    std::string failure() const { return path_.empty() ? reason_ : reason_ + " at " + path_; }

private:
    bool fail(std::string reason);
    bool failInside(const std::string& component);
    bool number(const Value& number);
    /// With a character before and one behind the quotes, unless that is NUL.
    bool string(const Value& text, char before = '\0', char after = '\0');
    bool array(const NSArray& array);
    bool dictionary(const NSDictionary& dictionary);
    bool enter();

    GrowingText text_;
    int maximumDepth_;
    int depth_ = 0;
    std::string reason_;
    std::string path_;
};

}  // namespace flarebox::detail
