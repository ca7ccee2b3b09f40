#include <Foundation/Backend/Simdjson/JSONDecoder.h>
#include <Foundation/Backend/Simdjson/JSONFailure.h>
#include <Foundation/DocumentStorage.h>

#include <sys/mman.h>

#include <algorithm>
#include <charconv>

namespace flarebox::detail {
namespace {

namespace dom = simdjson::dom;

// Answers may still be read on a worker thread while the process ends. Used before anything else the parser's tables
// outlive it.
[[maybe_unused]] const bool hasParser = [] {
    dom::parser parser;
    return parser.parse("[]", 2).error() == simdjson::SUCCESS;
}();

/// Places are 32-bit numbers: this many bytes cannot lead beyond them.
constexpr std::size_t largestDocument = std::size_t{1} << 30;
/// A thread keeps the memory of its parser between documents up to this size.
constexpr std::size_t largestKeptDocument = std::size_t{4} << 20;

static_assert(DocumentStorage::textPadding <= simdjson::SIMDJSON_PADDING);

/// Large blocks that are written once from end to end are cheaper in large pages.
void preferLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) {
#ifdef MADV_HUGEPAGE
    constexpr std::uintptr_t page = 4096;
    const auto start = (reinterpret_cast<std::uintptr_t>(memory) + page - 1) / page * page;
    const auto end = (reinterpret_cast<std::uintptr_t>(memory) + bytes) / page * page;
    if (start < end) ::madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
#endif
}

/// Whether collections nest deeper than allowed. The parser does not count an empty one as one level more.
bool nestsDeeperThan(const DocumentStorage& document, std::uint32_t index, int depth) {
    const TapeWord here = document.word(index);
    if (here.sort() != '[' && here.sort() != '{') return false;
    if (depth == 0) return true;
    const std::uint32_t last = here.end() - 1;
    for (std::uint32_t at = index + 1; at < last; at = document.after(at)) {
        if (nestsDeeperThan(document, at, depth - 1)) return true;
    }
    return false;
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

/// Whether the memory of decoding serves the next document or becomes the memory of this one.
enum class Keeping { Copies, Originals };

class Decoder {
public:
    Decoder(int maximumDepth, Keeping keeping) : maximumDepth_(maximumDepth), keeping_(keeping) {}

    JSONDecoding decode(const JSONSource& source, bool allowFragments) {
        simdjson::error_code error = parse(source);
        if (error == simdjson::NUMBER_ERROR) {
            if (const std::string rewritten = withoutLargeIntegers(source.text); !rewritten.empty())
                error = parse({rewritten, 0});
        }
        if (error) return failure(error, source.text);
        const dom::element root = parsed_.root();
        if (!allowFragments && !root.is_array() && !root.is_object()) {
            return {{}, "the document is neither an array nor a dictionary"};
        }
        auto document = keeping_ == Keeping::Copies ? copiedDocument() : takenDocument();
        if (mayBeTooDeep_ && nestsDeeperThan(*document, 1, maximumDepth_))
            return failure(simdjson::DEPTH_ERROR, source.text);
        return {DocumentStorage::adopt(std::move(document)), {}};
    }

private:
    JSONDecoding failure(simdjson::error_code error, std::string_view text) const {
        return {{}, describeJSONFailure(error, text, maximumDepth_)};
    }

    simdjson::error_code parse(const JSONSource& source) {
        if (source.text.empty()) return simdjson::EMPTY;
        if (source.text.size() > largestDocument) return simdjson::CAPACITY;
        // First with one level less than allowed, which leaves nothing to be checked.
        mayBeTooDeep_ = false;
        const simdjson::error_code error = parse(source, maximumDepth_);
        if (error != simdjson::DEPTH_ERROR) return error;
        mayBeTooDeep_ = true;
        return parse(source, maximumDepth_ + 1);
    }

    simdjson::error_code parse(const JSONSource& source, int depth) {
        if (const auto error = prepare(source.text.size(), static_cast<std::size_t>(depth))) return error;
        const bool needsCopy = source.readableBehind < simdjson::SIMDJSON_PADDING;
        return parser_.parse_into_document(parsed_, source.text.data(), source.text.size(), needsCopy).error();
    }

    simdjson::error_code prepare(std::size_t size, std::size_t depth) {
        if (parser_.capacity() < size || parser_.max_depth() != depth) {
            if (const auto error = parser_.allocate(std::max(size, parser_.capacity()), depth)) return error;
        }
        if (keeping_ == Keeping::Copies || parsed_.capacity() >= size) return simdjson::SUCCESS;
        if (const auto error = parsed_.allocate(size)) return error;
        preferLargePages(parsed_.tape.get(), size * sizeof(std::uint64_t));
        preferLargePages(parsed_.string_buf.get(), size);
        preferLargePages(parser_.implementation->structural_indexes.get(), size * sizeof(std::uint32_t));
        return simdjson::SUCCESS;
    }

    std::size_t tapeLength() const { return static_cast<std::uint32_t>(parsed_.tape[0]); }

    std::unique_ptr<DocumentStorage> takenDocument() {
        return std::make_unique<DocumentStorage>(std::move(parsed_.tape), std::move(parsed_.string_buf));
    }

    std::unique_ptr<DocumentStorage> copiedDocument() const {
        const std::size_t words = tapeLength();
        auto tape = std::make_unique_for_overwrite<std::uint64_t[]>(words);
        std::memcpy(tape.get(), parsed_.tape.get(), words * sizeof(std::uint64_t));
        const std::size_t bytes = textsLength();
        auto texts = std::make_unique_for_overwrite<std::uint8_t[]>(bytes + DocumentStorage::textPadding);
        std::memcpy(texts.get(), parsed_.string_buf.get(), bytes);
        std::memset(texts.get() + bytes, 0, DocumentStorage::textPadding);
        return std::make_unique<DocumentStorage>(std::move(tape), std::move(texts));
    }

    /// The parser has all texts in one block in the order of the tape, so the last one shows where they end.
    std::size_t textsLength() const {
        for (std::size_t at = tapeLength(); at-- > 1;) {
            if (TapeWord(parsed_.tape[at]).sort() != '"') continue;
            if (mayBeNumber(at)) break;
            return textEnd(at);
        }
        std::size_t end = 0;
        for (std::size_t at = 1; at < tapeLength(); ++at) {
            const char sort = TapeWord(parsed_.tape[at]).sort();
            if (sort == '"') end = textEnd(at);
            if (sort == 'l' || sort == 'u' || sort == 'd') ++at;
        }
        return end;
    }
    /// Whether the word may be the second one of a number, and look like another word by chance.
    bool mayBeNumber(std::size_t at) const {
        const TapeWord before(parsed_.tape[at - 1]);
        return before.sort() == 'l' || before.sort() == 'u' || before.sort() == 'd';
    }
    std::size_t textEnd(std::size_t at) const {
        const std::size_t place = TapeWord(parsed_.tape[at]).textPlace();
        std::uint32_t length;
        std::memcpy(&length, parsed_.string_buf.get() + place, sizeof length);
        return place + sizeof length + length;
    }

    int maximumDepth_;
    Keeping keeping_;
    bool mayBeTooDeep_ = false;
    dom::parser parser_;
    dom::document parsed_;
};

}  // namespace

JSONDecoding decodeJSON(JSONSource source, bool allowFragments, int maximumDepth) {
    if (source.text.size() > largestKeptDocument)
        return Decoder(maximumDepth, Keeping::Originals).decode(source, allowFragments);
    thread_local Decoder decoder(maximumDepth, Keeping::Copies);
    return decoder.decode(source, allowFragments);
}

bool isWellFormedUTF8(std::string_view text) noexcept {
    return simdjson::validate_utf8(text);
}

}  // namespace flarebox::detail
