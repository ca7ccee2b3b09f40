#include <Foundation/JSONWriter.h>

#include <Foundation/Backend/Simdjson/JSONDecoder.h>
#include <Foundation/Storage.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace flarebox::detail {
namespace {

/// How a byte is written inside a text: 0 as it is, 'u' as a numbered escape, otherwise after a backslash as this
/// letter.
constexpr auto escapes = [] {
    std::array<char, 256> table{};
    for (std::size_t c = 0; c < 0x20; ++c) table[c] = 'u';
    table['"'] = '"';
    table['\\'] = '\\';
    table['\b'] = 'b';
    table['\f'] = 'f';
    table['\n'] = 'n';
    table['\r'] = 'r';
    table['\t'] = 't';
    return table;
}();
constexpr std::size_t longestEscape = 6;

constexpr std::uint64_t inEveryByte(std::uint64_t byte) {
    return byte * 0x0101010101010101;
}
constexpr std::uint64_t topBits = inEveryByte(0x80);

// Most texts need no escapes, so they are looked at and copied in blocks.

#ifdef __SSE2__
/// Sixteen bytes of a text.
class LongBlock {
public:
    static constexpr std::size_t size = 16;

    explicit LongBlock(const char* text) : bytes_(_mm_loadu_si128(reinterpret_cast<const __m128i*>(text))) {}
    void store(char* out) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes_); }
    bool isASCII() const { return _mm_movemask_epi8(bytes_) == 0; }
    std::size_t firstToEscape() const {
        const __m128i lastControl = _mm_set1_epi8(0x1F);
        const __m128i found = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi8(bytes_, _mm_set1_epi8('"')), _mm_cmpeq_epi8(bytes_, _mm_set1_epi8('\\'))),
            _mm_cmpeq_epi8(_mm_max_epu8(bytes_, lastControl), lastControl));
        return static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(_mm_movemask_epi8(found)) | 1u << size));
    }

private:
    __m128i bytes_;
};
#endif

/// Eight bytes of a text, the first of them in the lowest bits.
class Block {
public:
    static constexpr std::size_t size = 8;

    explicit Block(const char* text) {
        std::memcpy(&bytes_, text, size);
        if constexpr (std::endian::native == std::endian::big) bytes_ = __builtin_bswap64(bytes_);
    }
    /// One to seven bytes, and blanks behind them.
    Block(const char* text, std::size_t length) {
        const auto byte = [&](std::size_t at) { return std::uint64_t{static_cast<unsigned char>(text[at])} << 8 * at; };
        std::uint64_t found = 0;
        for (std::size_t at : {std::size_t{0}, length / 2, length - 1}) found |= byte(at);
        if (length > 3) {
            std::uint32_t first, last;
            std::memcpy(&first, text, sizeof first);
            std::memcpy(&last, text + length - sizeof last, sizeof last);
            if constexpr (std::endian::native == std::endian::big) {
                first = __builtin_bswap32(first);
                last = __builtin_bswap32(last);
            }
            found = first | std::uint64_t{last} << 8 * (length - sizeof last);
        }
        bytes_ = found | inEveryByte(' ') << 8 * length;
    }

    void store(char* out) const {
        const std::uint64_t bytes = std::endian::native == std::endian::big ? __builtin_bswap64(bytes_) : bytes_;
        std::memcpy(out, &bytes, size);
    }
    bool isASCII() const { return (bytes_ & topBits) == 0; }
    /// The position of the first control character, quote or backslash; 8 when there is none.
    std::size_t firstToEscape() const {
        const auto zeros = [](std::uint64_t bytes) { return (bytes - inEveryByte(1)) & ~bytes; };
        const std::uint64_t controls = (bytes_ - inEveryByte(0x20)) & ~bytes_;
        const std::uint64_t found =
            (zeros(bytes_ ^ inEveryByte('"')) | zeros(bytes_ ^ inEveryByte('\\')) | controls) & topBits;
        return static_cast<std::size_t>(std::countr_zero(found)) / 8;
    }

private:
    std::uint64_t bytes_;
};

char* writeEscape(char* out, char character) {
    const auto byte = static_cast<unsigned char>(character);
    *out++ = '\\';
    *out++ = escapes[byte];
    if (escapes[byte] != 'u') return out;
    constexpr char digits[] = "0123456789abcdef";
    for (const char digit : {'0', '0', digits[byte >> 4], digits[byte & 15]}) *out++ = digit;
    return out;
}

/// Writes a text with its escapes, for each byte of which there is room for the longest escape and a block beyond.
class EscapedText {
public:
    EscapedText(std::string_view text, char* out) : at_(text.data()), end_(at_ + text.size()), out_(out) {}

    char* write() {
#ifdef __SSE2__
        while (left() >= LongBlock::size) take(LongBlock(at_), LongBlock::size);
#endif
        while (left() >= Block::size) take(Block(at_), Block::size);
        while (left() > 0) take(Block(at_, left()), left());
        return out_;
    }
    bool isASCII() const {
        return isASCII_;
    }

private:
    std::size_t left() const {
        return static_cast<std::size_t>(end_ - at_);
    }

    template <class AnyBlock>
    void take(const AnyBlock& block, std::size_t length) {
        block.store(out_);
        isASCII_ = isASCII_ && block.isASCII();
        const std::size_t plain = block.firstToEscape();
        if (plain >= length) {
            at_ += length;
            out_ += length;
            return;
        }
        out_ = writeEscape(out_ + plain, at_[plain]);
        at_ += plain + 1;
    }

    const char* at_;
    const char* end_;
    char* out_;
    bool isASCII_ = true;
};

constexpr std::size_t roomBehind = 16;

}  // namespace

void GrowingText::grow(std::size_t bytes) {
    constexpr std::size_t least = 512;
    text_.resize(std::max({size_ + bytes, 2 * text_.size(), least}));
}

bool JSONWriter::write(const Value& value) {
    switch (value.kind()) {
        case Value::Kind::Null:
            text_.append("null");
            return true;
        case Value::Kind::Number:
            return number(value);
        case Value::Kind::String:
            return string(value);
        case Value::Kind::Array:
            return array(value.as<NSArray>());
        case Value::Kind::Dictionary:
            return dictionary(value.as<NSDictionary>());
        case Value::Kind::Absent:
            return fail("there is no value");
        default:
            return fail("a value of class " + std::string(value.classOf()->name()) + " has no JSON form");
    }
}

bool JSONWriter::fail(std::string reason) {
    reason_ = std::move(reason);
    return false;
}

/// The path grows from the failing value outwards.
bool JSONWriter::failInside(const std::string& component) {
    const bool needsDot = !path_.empty() && path_.front() != '[';
    path_.insert(0, needsDot ? component + "." : component);
    return false;
}

bool JSONWriter::enter() {
    return ++depth_ <= maximumDepth_ || fail("arrays and dictionaries are nested too deep");
}

bool JSONWriter::number(const Value& number) {
    using NumberKind = ValueAccess::NumberKind;
    constexpr std::size_t longestNumber = 32;
    char* const start = text_.reserve(longestNumber);
    char* const end = start + longestNumber;
    const std::uint64_t bits = ValueAccess::numberBits(number);
    switch (ValueAccess::numberKind(number)) {
        case NumberKind::Boolean:
            text_.append(bits ? std::string_view("true") : std::string_view("false"));
            return true;
        case NumberKind::Signed:
            text_.commit(std::to_chars(start, end, static_cast<std::int64_t>(bits)).ptr);
            return true;
        case NumberKind::Unsigned:
            text_.commit(std::to_chars(start, end, bits).ptr);
            return true;
        case NumberKind::Floating:
            break;
    }
    const auto floating = std::bit_cast<double>(bits);
    if (!std::isfinite(floating)) return fail("the number " + number.description() + " has no JSON form");
    text_.commit(std::to_chars(start, end, floating).ptr);
    return true;
}

bool JSONWriter::string(const Value& value, char before, char after) {
    // In pieces, so that no room is made for escapes that a long text hardly has.
    constexpr std::size_t longestPiece = 4096;
    const std::string_view text = ValueAccess::text(value);
    bool isASCII = true;
    char* out = text_.reserve(2);
    if (before) *out++ = before;
    *out++ = '"';
    std::size_t written = 0;
    do {
        text_.commit(out);
        const std::string_view piece = text.substr(written, longestPiece);
        EscapedText escaped(piece, text_.reserve(piece.size() * longestEscape + roomBehind + 2));
        out = escaped.write();
        isASCII = isASCII && escaped.isASCII();
        written += piece.size();
    } while (written < text.size());
    *out++ = '"';
    if (after) *out++ = after;
    text_.commit(out);
    // What was decoded is known to be well-formed.
    if (isASCII || ValueAccess::isInDocument(value) || isWellFormedUTF8(text)) return true;
    return fail("a text that is not valid UTF-8 has no JSON form");
}

bool JSONWriter::array(const NSArray& array) {
    if (!enter()) return false;
    text_.append('[');
    const auto elements = array.elements();
    for (std::size_t i = 0; i < elements.size(); ++i) {
        if (i > 0) text_.append(',');
        if (!write(elements[i])) return failInside("[" + std::to_string(i) + "]");
    }
    text_.append(']');
    --depth_;
    return true;
}

bool JSONWriter::dictionary(const NSDictionary& dictionary) {
    if (!enter()) return false;
    text_.append('{');
    const auto entries = dictionary.entries();
    const JSONKeys* const ready = ValueAccess::readyKeys(dictionary);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto& [name, value] = entries[i];
        if (ready)
            ready->append(i, text_);
        else if (!key(name, i == 0))
            return false;
        if (!write(value)) return failInside(name.description());
    }
    text_.append('}');
    --depth_;
    return true;
}

bool JSONWriter::key(const Value& key, bool isFirst) {
    if (key.kind() != Value::Kind::String) {
        fail("a key that is no text has no JSON form");
        return failInside(key.description());
    }
    return string(key, isFirst ? '\0' : ',', ':') || failInside("a key");
}

JSONKeys::JSONKeys(const NSDictionary& dictionary) {
    JSONWriter writer(texts_, 0);
    ends_.reserve(dictionary.count());
    for (const auto& [key, value] : dictionary.entries()) {
        if (!writer.key(key, false)) {
            ends_.clear();
            break;
        }
        ends_.push_back(writer.length());
    }
    writer.finish();
    texts_.resize(texts_.size() + GrowingText::padding);
}

}  // namespace flarebox::detail
