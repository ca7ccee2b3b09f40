#include <Foundation/Backend/Icu/Unicode.h>
#include <Foundation/StringsTable.h>

#include <algorithm>
#include <charconv>
#include <optional>

namespace flarebox::detail {

namespace {

bool isBlank(char character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

bool isBareKeyCharacter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '_' || character == '.' || character == '-';
}

class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    StringsTable parse() {
        StringsTable table;
        if (text_.starts_with("\xEF\xBB\xBF")) position_ = 3;
        if (!isValidUTF8(text_)) return fail("not valid UTF-8"), table;
        while (skipBlanksAndComments() && position_ < text_.size()) {
            auto key = parseKey();
            if (!key || !expect('=') || !skipBlanksAndComments()) break;
            auto value = parseQuoted();
            if (!value || !expect(';')) break;
            table[std::move(*key)] = std::move(*value);
        }
        return table;
    }

    std::string failure;

private:
    std::nullopt_t fail(std::string_view what) {
        if (!failure.empty()) return std::nullopt;
        auto end = text_.begin() + static_cast<std::ptrdiff_t>(std::min(position_, text_.size()));
        failure = "line " + std::to_string(1 + std::count(text_.begin(), end, '\n')) + ": ";
        failure += what;
        return std::nullopt;
    }

    bool at(std::string_view token) const { return text_.substr(position_).starts_with(token); }

    /// False when a comment has no end.
    bool skipBlanksAndComments() {
        for (;;) {
            while (position_ < text_.size() && isBlank(text_[position_])) ++position_;
            bool isLine = at("//");
            if (!isLine && !at("/*")) return true;
            auto end = text_.find(isLine ? "\n" : "*/", position_ + 2);
            if (end == std::string_view::npos && !isLine) return fail("comment without an end"), false;
            position_ = end == std::string_view::npos ? text_.size() : end + (isLine ? 1 : 2);
        }
    }

    bool expect(char character) {
        if (!skipBlanksAndComments()) return false;
        if (position_ < text_.size() && text_[position_] == character) return ++position_, true;
        return fail(std::string("'") + character + "' is expected"), false;
    }

    std::optional<std::string> parseKey() {
        if (at("\"")) return parseQuoted();
        auto start = position_;
        while (position_ < text_.size() && isBareKeyCharacter(text_[position_])) ++position_;
        if (position_ == start) return fail("a key is expected");
        return std::string(text_.substr(start, position_ - start));
    }

    std::optional<std::string> parseQuoted() {
        if (!at("\"")) return fail("a text in quotation marks is expected");
        std::string result;
        while (++position_ < text_.size()) {
            char character = text_[position_];
            if (character == '"') return ++position_, result;
            if (character != '\\')
                result += character;
            else if (!parseEscape(result))
                return std::nullopt;
        }
        return fail("text without an end");
    }

    /// Leaves the position on the last character of the escape.
    bool parseEscape(std::string& result) {
        if (++position_ >= text_.size()) return fail("text without an end"), false;
        switch (char character = text_[position_]; character) {
            case 'n':
                result += '\n';
                return true;
            case 't':
                result += '\t';
                return true;
            case 'r':
                result += '\r';
                return true;
            case 'u':
            case 'U':
                return parseCodePoint(result);
            default:
                result += character;
                return true;
        }
    }

    bool parseCodePoint(std::string& result) {
        auto first = parseUnit();
        if (!first) return false;
        char32_t codePoint = *first;
        bool isHighSurrogate = codePoint >= 0xD800 && codePoint < 0xDC00;
        if (isHighSurrogate &&
            (text_.substr(position_ + 1).starts_with("\\U") || text_.substr(position_ + 1).starts_with("\\u"))) {
            position_ += 2;
            auto second = parseUnit();
            if (!second) return false;
            if (*second < 0xDC00 || *second > 0xDFFF) return fail("half of a pair is missing"), false;
            codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (*second - 0xDC00);
        }
        std::string bytes = encodeUTF8(codePoint);
        if (bytes.empty()) return fail("no such character"), false;
        result += bytes;
        return true;
    }

    std::optional<char32_t> parseUnit() {
        std::uint32_t unit = 0;
        std::string_view digits = text_.substr(position_ + 1, 4);
        auto [end, failed] = std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
        if (failed != std::errc() || end != digits.data() + 4) return fail("four hexadecimal digits are expected");
        position_ += 4;
        return unit;
    }

    std::string_view text_;
    std::size_t position_ = 0;
};

}  // namespace

StringsTable parseStringsTable(std::string_view text, std::string& failure) {
    Parser parser(text);
    StringsTable table = parser.parse();
    failure = std::move(parser.failure);
    return table;
}

}  // namespace flarebox::detail
