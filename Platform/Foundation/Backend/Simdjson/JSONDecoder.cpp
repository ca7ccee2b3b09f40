#include <Foundation/Backend/Simdjson/JSONDecoder.h>
#include <Foundation/Backend/Simdjson/JSONFailure.h>
#include <Foundation/Storage.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <new>

namespace flarebox::detail {
namespace {

namespace dom = simdjson::dom;

// Answers may still be read on a worker thread while the process ends. Used before anything else the parser's tables
// outlive it.
[[maybe_unused]] const bool hasParser = [] {
    dom::parser parser;
    return parser.parse("[]", 2).error() == simdjson::SUCCESS;
}();
using Entry = NSDictionary::Entry;
using Kind = Value::Kind;
using Node = DocumentStorage::Node;

/// Places are 32-bit numbers: this many bytes cannot lead beyond them.
constexpr std::size_t largestDocument = std::size_t{1} << 30;
/// A thread keeps the memory of its parser between documents up to this size.
constexpr std::size_t largestKeptDocument = std::size_t{4} << 20;
/// The size of a collection as the parser counts it means "at least" from here on.
constexpr std::size_t saturatedCount = 0xFFFFFF;

static_assert(sizeof(Node) % DocumentStorage::unit == 0 && sizeof(Value) % DocumentStorage::unit == 0);
static_assert(alignof(Value) <= DocumentStorage::unit);

/// Memory that grows while positions in it stay the same.
class NodeBuffer {
public:
    void clear() { size_ = DocumentStorage::unit; }  // place 0 stands for "none"

    std::size_t reserve(std::size_t bytes) {
        const std::size_t position = size_;
        size_ += (bytes + DocumentStorage::unit - 1) / DocumentStorage::unit * DocumentStorage::unit;
        if (size_ > capacity_) resize(std::max<std::size_t>(size_ * 2, 4096));
        return position;
    }
    template <class T>
    T* at(std::size_t position) {
        return reinterpret_cast<T*>(bytes_.get() + position);
    }

    DocumentStorage::Nodes copy() {
        NodeBuffer exact;
        exact.resize(size_);
        std::memcpy(exact.bytes_.get() + DocumentStorage::unit, bytes_.get() + DocumentStorage::unit,
                    size_ - DocumentStorage::unit);
        return std::move(exact.bytes_);
    }
    /// Hands the memory itself over, which leaves the buffer empty.
    DocumentStorage::Nodes take() {
        resize(size_);
        capacity_ = size_ = 0;
        return std::move(bytes_);
    }

private:
    void resize(std::size_t capacity) {
        void* memory = std::realloc(bytes_.get(), capacity);
        if (!memory) throw std::bad_alloc();
        static_cast<void>(bytes_.release());
        bytes_.reset(static_cast<std::byte*>(memory));
        capacity_ = capacity;
    }

    DocumentStorage::Nodes bytes_;
    std::size_t capacity_ = 0;
    std::size_t size_ = 0;
};

template <class Collection>
std::size_t exactCount(const Collection& collection) {
    const std::size_t count = collection.size();
    if (count < saturatedCount) return count;
    return static_cast<std::size_t>(std::distance(collection.begin(), collection.end()));
}

/// Whether the memory of decoding serves the next document or becomes the memory of this one.
enum class Keeping { Copies, Originals };

/// Turns one parsed document into values over a DocumentStorage.
/// Records of one list mostly have the same keys in the same order, so each dictionary is first compared with the last
/// one of its depth: as long as the keys agree, it takes over that one's key texts, and at the end its index.
class Builder {
public:
    Builder(NodeBuffer& nodes, std::vector<std::uint32_t>& lastDictionaries, Keeping keeping)
        : nodes_(nodes), lastDictionaries_(lastDictionaries), keeping_(keeping) {
        nodes_.clear();
        std::ranges::fill(lastDictionaries_, 0);
    }

    /// Absent when collections nest deeper than there is room for their last dictionaries.
    Value build(dom::document& parsed) {
        const dom::element root = parsed.root();
        auto document = std::make_unique<DocumentStorage>();
        document_ = document.get();
        const std::size_t rootPosition = nodes_.reserve(sizeof(Value));
        put(rootPosition, root, 0);
        if (isTooDeep_) return {};

        const Value result = *nodes_.at<Value>(rootPosition);
        keepTexts(*document, parsed);
        document->nodes = keeping_ == Keeping::Copies ? nodes_.copy() : nodes_.take();
        // The copy above counts the document, if it is of it; the first reference was the builder's.
        document.release()->release();
        return result;
    }

private:
    void put(std::size_t position, dom::element element, std::size_t depth);
    std::uint32_t array(dom::array array, std::size_t depth);
    std::uint32_t dictionary(dom::object object, std::size_t depth);
    void keepTexts(DocumentStorage& document, dom::document& parsed) const;
    void finishKeys(std::size_t node);
    void dropRepeatedKeys(std::size_t node);
    void indexKeys(std::size_t node);

    /// The parser does not count an empty collection as one level more, so the bound is checked here too.
    bool isBeyond(std::size_t depth) { return isTooDeep_ = isTooDeep_ || depth >= lastDictionaries_.size(); }

    void borrow(std::size_t position, Kind kind, std::uint32_t place) {
        ValueAccess::borrow(nodes_.at<Value>(position), kind, document_, place);
    }

    /// The parser has all texts in one block, in the order of the document, each after its length in 32 bits.
    std::uint32_t textPlace(std::string_view text) {
        const char* start = text.data() - sizeof(std::uint32_t);
        if (!texts_) texts_ = start;
        textsEnd_ = text.data() + text.size();
        return static_cast<std::uint32_t>(start - texts_);
    }
    std::string_view textAt(std::uint32_t place) const {
        std::uint32_t length;
        std::memcpy(&length, texts_ + place, sizeof length);
        return {texts_ + place + sizeof length, length};
    }

    Entry* entriesOf(std::size_t node) { return nodes_.at<Entry>(node + sizeof(Node)); }
    std::uint32_t keyPlace(std::size_t node, std::size_t i) { return ValueAccess::place(entriesOf(node)[i].first); }
    std::string_view keyAt(std::size_t node, std::size_t i) { return textAt(keyPlace(node, i)); }

    static std::uint32_t placeOf(std::size_t position) {
        return static_cast<std::uint32_t>(position / DocumentStorage::unit);
    }
    static std::size_t positionOf(std::uint32_t place) { return std::size_t{place} * DocumentStorage::unit; }

    NodeBuffer& nodes_;
    std::vector<std::uint32_t>& lastDictionaries_;
    Keeping keeping_;
    DocumentStorage* document_ = nullptr;
    const char* texts_ = nullptr;
    const char* textsEnd_ = nullptr;
    bool isTooDeep_ = false;
};

void Builder::keepTexts(DocumentStorage& document, dom::document& parsed) const {
    // Places count from the first text, which is where the parser's block begins.
    const bool isWholeBlock = texts_ == reinterpret_cast<const char*>(parsed.string_buf.get());
    if (keeping_ == Keeping::Originals && isWholeBlock) {
        document.texts = std::move(parsed.string_buf);
        return;
    }
    const auto bytes = static_cast<std::size_t>(textsEnd_ - texts_);
    document.texts = std::make_unique_for_overwrite<std::uint8_t[]>(bytes);
    if (bytes > 0) std::memcpy(document.texts.get(), texts_, bytes);
}

void Builder::put(std::size_t position, dom::element element, std::size_t depth) {
    // The element is of the type asked for in each branch, so its value is there.
    switch (element.type()) {
        case dom::element_type::STRING: {
            borrow(position, Kind::String, textPlace(element.get_string().value_unsafe()));
            break;
        }
        case dom::element_type::NULL_VALUE:
            ::new (nodes_.at<void>(position)) Value(Value::null());
            break;
        case dom::element_type::BOOL:
            ::new (nodes_.at<void>(position)) Value(element.get_bool().value_unsafe());
            break;
        case dom::element_type::INT64:
            ::new (nodes_.at<void>(position)) Value(element.get_int64().value_unsafe());
            break;
        case dom::element_type::UINT64:
            ::new (nodes_.at<void>(position)) Value(element.get_uint64().value_unsafe());
            break;
        case dom::element_type::DOUBLE:
            ::new (nodes_.at<void>(position)) Value(element.get_double().value_unsafe());
            break;
        case dom::element_type::ARRAY: {
            const std::uint32_t place = array(element.get_array().value_unsafe(), depth);
            borrow(position, Kind::Array, place);
            break;
        }
        case dom::element_type::OBJECT: {
            const std::uint32_t place = dictionary(element.get_object().value_unsafe(), depth);
            borrow(position, Kind::Dictionary, place);
            break;
        }
    }
}

std::uint32_t Builder::array(dom::array array, std::size_t depth) {
    if (isBeyond(depth)) return 0;
    const std::size_t count = exactCount(array);
    const std::size_t node = nodes_.reserve(sizeof(Node) + count * sizeof(Value));
    *nodes_.at<Node>(node) = {static_cast<std::uint32_t>(count), 0};
    std::size_t position = node + sizeof(Node);
    for (dom::element element : array) {
        put(position, element, depth + 1);
        position += sizeof(Value);
    }
    return placeOf(node);
}

std::uint32_t Builder::dictionary(dom::object object, std::size_t depth) {
    if (isBeyond(depth)) return 0;
    const std::size_t count = exactCount(object);
    const std::size_t node = nodes_.reserve(sizeof(Node) + count * sizeof(Entry));
    *nodes_.at<Node>(node) = {static_cast<std::uint32_t>(count), 0};
    const std::size_t last = positionOf(lastDictionaries_[depth]);
    const std::size_t lastCount = last ? nodes_.at<Node>(last)->count : 0;
    std::size_t i = 0;
    std::size_t agreeing = 0;
    for (auto field : object) {
        const std::size_t position = node + sizeof(Node) + i * sizeof(Entry);
        std::uint32_t key = textPlace(field.key);
        if (agreeing == i && i < lastCount && keyAt(last, i) == field.key) {
            key = keyPlace(last, i);
            ++agreeing;
        }
        borrow(position, Kind::String, key);
        put(position + sizeof(Value), field.value, depth + 1);
        ++i;
    }
    if (agreeing == count && count == lastCount && last)
        nodes_.at<Node>(node)->index = nodes_.at<Node>(last)->index;
    else
        finishKeys(node);
    lastDictionaries_[depth] = placeOf(node);
    return placeOf(node);
}

void Builder::finishKeys(std::size_t node) {
    if (nodes_.at<Node>(node)->count > smallCollection)
        indexKeys(node);
    else
        dropRepeatedKeys(node);
}

void Builder::dropRepeatedKeys(std::size_t node) {
    Entry* entries = entriesOf(node);
    Node& header = *nodes_.at<Node>(node);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < header.count; ++i) {
        const std::string_view key = keyAt(node, i);
        std::size_t same = 0;
        while (same < kept && keyAt(node, same) != key) ++same;
        if (same < kept)
            std::memcpy(static_cast<void*>(&entries[same].second), &entries[i].second, sizeof(Value));
        else if (kept++ < i)
            std::memcpy(static_cast<void*>(&entries[kept - 1]), &entries[i], sizeof(Entry));
    }
    header.count = static_cast<std::uint32_t>(kept);
}

void Builder::indexKeys(std::size_t node) {
    const std::size_t slotCount = HashSlots::slotsFor(nodes_.at<Node>(node)->count);
    const std::size_t index = nodes_.reserve((1 + slotCount) * sizeof(std::uint32_t));
    Entry* entries = entriesOf(node);
    Node& header = *nodes_.at<Node>(node);
    auto* first = nodes_.at<std::uint32_t>(index);
    *first = static_cast<std::uint32_t>(slotCount);
    const std::span<std::uint32_t> slots(first + 1, slotCount);
    std::ranges::fill(slots, 0);

    std::size_t kept = 0;
    for (std::size_t i = 0; i < header.count; ++i) {
        const std::string_view key = keyAt(node, i);
        const std::size_t hash = hashText(key);
        const std::size_t same = HashSlots::find(slots, hash, [&](std::size_t at) { return keyAt(node, at) == key; });
        if (same != HashSlots::notFound) {
            std::memcpy(static_cast<void*>(&entries[same].second), &entries[i].second, sizeof(Value));
            continue;
        }
        if (kept < i) std::memcpy(static_cast<void*>(&entries[kept]), &entries[i], sizeof(Entry));
        HashSlots::insert(slots, hash, kept++);
    }
    header.count = static_cast<std::uint32_t>(kept);
    header.index = placeOf(index);
}

/// The end of the text that begins with the quote at `start`.
std::size_t endOfText(std::string_view document, std::size_t start) {
    std::size_t at = start + 1;
    while (at < document.size() && document[at] != '"') at += document[at] == '\\' ? 2 : 1;
    return std::min(at + 1, document.size());
}

/// Whether 64 bits do not hold the integer.
bool isTooLarge(std::string_view digits) {
    const char* end = digits.data() + digits.size();
    std::int64_t asSigned;
    std::uint64_t asUnsigned;
    constexpr auto tooLarge = std::errc::result_out_of_range;
    return std::from_chars(digits.data(), end, asSigned).ec == tooLarge &&
           (digits.starts_with('-') || std::from_chars(digits.data(), end, asUnsigned).ec == tooLarge);
}

/// The document with integers beyond 64 bits written as floating numbers, which the parser refuses otherwise.
/// Empty when there are none.
std::string withoutLargeIntegers(std::string_view document) {
    std::string result;
    std::size_t copied = 0;
    for (std::size_t at = 0; at < document.size();) {
        if (document[at] == '"') {
            at = endOfText(document, at);
            continue;
        }
        const std::size_t end = std::min(document.find_first_not_of("-+.eE0123456789", at), document.size());
        if (end == at) {
            ++at;
            continue;
        }
        const std::string_view number = document.substr(at, end - at);
        if (number.find_first_of("+.eE") == number.npos && isTooLarge(number)) {
            result.append(document, copied, end - copied).append(".0");
            copied = end;
        }
        at = end;
    }
    if (copied > 0) result.append(document, copied);
    return result;
}

class Decoder {
public:
    Decoder(int maximumDepth, Keeping keeping)
        : maximumDepth_(maximumDepth), keeping_(keeping), lastDictionaries_(static_cast<std::size_t>(maximumDepth)) {}

    JSONDecoding decode(std::string_view text, bool allowFragments) {
        simdjson::error_code error = parse(text);
        if (error == simdjson::NUMBER_ERROR) {
            if (const std::string rewritten = withoutLargeIntegers(text); !rewritten.empty()) error = parse(rewritten);
        }
        if (error) return {{}, describeJSONFailure(error, text, maximumDepth_)};
        const dom::element root = parsed_.root();
        if (!allowFragments && !root.is_array() && !root.is_object()) {
            return {{}, "the document is neither an array nor a dictionary"};
        }
        Value value = Builder(nodes_, lastDictionaries_, keeping_).build(parsed_);
        if (!value) return {{}, describeJSONFailure(simdjson::DEPTH_ERROR, text, maximumDepth_)};
        return {std::move(value), {}};
    }

private:
    simdjson::error_code parse(std::string_view text) {
        if (text.empty()) return simdjson::EMPTY;
        if (text.size() > largestDocument) return simdjson::CAPACITY;
        if (parser_.capacity() == 0) {
            const auto error = parser_.allocate(text.size(), static_cast<std::size_t>(maximumDepth_) + 1);
            if (error) return error;
        }
        return parser_.parse_into_document(parsed_, text.data(), text.size()).error();
    }

    int maximumDepth_;
    Keeping keeping_;
    dom::parser parser_;
    dom::document parsed_;
    NodeBuffer nodes_;
    std::vector<std::uint32_t> lastDictionaries_;
};

}  // namespace

JSONDecoding decodeJSON(std::string_view text, bool allowFragments, int maximumDepth) {
    if (text.size() > largestKeptDocument)
        return Decoder(maximumDepth, Keeping::Originals).decode(text, allowFragments);
    thread_local Decoder decoder(maximumDepth, Keeping::Copies);
    return decoder.decode(text, allowFragments);
}

bool isWellFormedUTF8(std::string_view text) noexcept {
    return simdjson::validate_utf8(text);
}

}  // namespace flarebox::detail
