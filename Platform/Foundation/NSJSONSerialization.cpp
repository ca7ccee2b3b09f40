#include <Foundation/Backend/Simdjson/JSONDecoder.h>
#include <Foundation/NSJSONSerialization.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace flarebox {
namespace {

Ref<NSError> corruptError(const std::string& reason) {
    return NSError::errorWithDomain(NSCocoaErrorDomain, NSPropertyListReadCorruptError, reason);
}

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

constexpr std::uint64_t inEveryByte(std::uint64_t byte) {
    return byte * 0x0101010101010101;
}

/// Whether some of the eight bytes is a control character, a quote, a backslash or beyond ASCII. May see one too many.
bool needsCare(std::uint64_t bytes) {
    auto hasZero = [](std::uint64_t b) { return (b - inEveryByte(1)) & ~b; };
    const std::uint64_t control = bytes - inEveryByte(0x20);
    return ((bytes | control | hasZero(bytes ^ inEveryByte('"')) | hasZero(bytes ^ inEveryByte('\\'))) &
            inEveryByte(0x80)) != 0;
}

/// Whether the text can be written as it is. Most texts can, so eight bytes are looked at in one step.
bool isPlain(std::string_view text) {
    std::size_t at = 0;
    for (; at + 8 <= text.size(); at += 8) {
        std::uint64_t bytes;
        std::memcpy(&bytes, text.data() + at, sizeof bytes);
        if (needsCare(bytes)) return false;
    }
    for (; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte >= 0x80 || escapes[byte] != 0) return false;
    }
    return true;
}

class Writer {
public:
    explicit Writer(std::string& text) : text_(text) {}

    bool write(const Value& value) {
        switch (value.kind()) {
            case Value::Kind::Null:
                text_ += "null";
                return true;
            case Value::Kind::Number:
                return number(value.as<NSNumber>());
            case Value::Kind::String:
                return string(value.as<NSString>().text());
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

    /// Why writing failed and at which key path.
    std::string failure() const { return path_.empty() ? reason_ : reason_ + " at " + path_; }

private:
    bool fail(std::string reason) {
        reason_ = std::move(reason);
        return false;
    }

    /// The path grows from the failing value outwards.
    bool failInside(const std::string& component) {
        const bool needsDot = !path_.empty() && path_.front() != '[';
        path_.insert(0, needsDot ? component + "." : component);
        return false;
    }

    bool number(const NSNumber& number);
    bool string(std::string_view text);
    bool array(const NSArray& array);
    bool dictionary(const NSDictionary& dictionary);

    bool enter() {
        return ++depth_ <= NSJSONSerialization::maximumDepth || fail("arrays and dictionaries are nested too deep");
    }

    std::string& text_;
    std::string reason_;
    std::string path_;
    int depth_ = 0;
};

bool Writer::number(const NSNumber& number) {
    if (number.isBoolean()) {
        text_ += number.boolValue() ? "true" : "false";
        return true;
    }
    if (number.isFloating() && !std::isfinite(number.doubleValue())) {
        return fail("the number " + number.stringValue() + " has no JSON form");
    }
    char buffer[32];
    char* const end = buffer + sizeof buffer;
    const auto result = number.isFloating()   ? std::to_chars(buffer, end, number.doubleValue())
                        : number.isUnsigned() ? std::to_chars(buffer, end, number.unsignedIntegerValue())
                                              : std::to_chars(buffer, end, number.integerValue());
    text_.append(buffer, result.ptr);
    return true;
}

bool Writer::string(std::string_view text) {
    if (isPlain(text)) {
        text_.append(1, '"').append(text).append(1, '"');
        return true;
    }
    if (!detail::isWellFormedUTF8(text)) return fail("a text that is not valid UTF-8 has no JSON form");
    text_ += '"';
    std::size_t plain = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const char escape = escapes[byte];
        if (escape == 0) continue;
        text_.append(text, plain, i - plain).append(1, '\\').append(1, escape);
        if (escape == 'u') {
            constexpr char digits[] = "0123456789abcdef";
            text_.append("00").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
        }
        plain = i + 1;
    }
    text_.append(text, plain).append(1, '"');
    return true;
}

bool Writer::array(const NSArray& array) {
    if (!enter()) return false;
    text_ += '[';
    for (std::size_t i = 0; i < array.count(); ++i) {
        if (i > 0) text_ += ',';
        if (!write(array.elements()[i])) return failInside("[" + std::to_string(i) + "]");
    }
    text_ += ']';
    --depth_;
    return true;
}

bool Writer::dictionary(const NSDictionary& dictionary) {
    if (!enter()) return false;
    text_ += '{';
    bool isFirst = true;
    for (const auto& [key, value] : dictionary.entries()) {
        if (!isFirst) text_ += ',';
        isFirst = false;
        if (key.kind() != Value::Kind::String) {
            fail("a key that is no text has no JSON form");
            return failInside(key.description());
        }
        if (!string(key.as<NSString>().text())) return failInside("a key");
        text_ += ':';
        if (!write(value)) return failInside(key.description());
    }
    text_ += '}';
    --depth_;
    return true;
}

}  // namespace

Value NSJSONSerialization::JSONObjectWithText(std::string_view text, NSJSONReadingOptions options,
                                              Ref<NSError>* error) {
    constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    detail::JSONDecoding decoding =
        detail::decodeJSON(text, (options & NSJSONReadingAllowFragments) != 0, maximumDepth);
    if (!decoding.value && error) {
        *error =
            corruptError("The data couldn’t be read because it isn’t in the correct format: " + decoding.failure + ".");
    }
    return std::move(decoding.value);
}

Value NSJSONSerialization::JSONObjectWithData(const NSData& data, NSJSONReadingOptions options, Ref<NSError>* error) {
    return JSONObjectWithText(data.text(), options, error);
}

Value NSJSONSerialization::JSONObjectWithData(const NSData& data, Ref<NSError>* error) {
    return JSONObjectWithData(data, NSJSONReadingStrict, error);
}

bool NSJSONSerialization::writeJSONObject(const Value& value, std::string& text, NSJSONWritingOptions options,
                                          Ref<NSError>* error) {
    const std::size_t start = text.size();
    const bool isCollection = value.kind() == Value::Kind::Array || value.kind() == Value::Kind::Dictionary;
    std::string failure = "the value is neither an array nor a dictionary";
    if (isCollection || (options & NSJSONWritingFragmentsAllowed) != 0) {
        Writer writer(text);
        if (writer.write(value)) return true;
        failure = writer.failure();
    }
    text.resize(start);
    if (error) *error = corruptError("The data couldn’t be written as JSON: " + failure + ".");
    return false;
}

NSData NSJSONSerialization::dataWithJSONObject(const Value& value, NSJSONWritingOptions options, Ref<NSError>* error) {
    std::string text;
    if (!writeJSONObject(value, text, options, error)) return {};
    return NSData::dataWithString(std::move(text));
}

NSData NSJSONSerialization::dataWithJSONObject(const Value& value, Ref<NSError>* error) {
    return dataWithJSONObject(value, NSJSONWritingStrict, error);
}

}  // namespace flarebox
