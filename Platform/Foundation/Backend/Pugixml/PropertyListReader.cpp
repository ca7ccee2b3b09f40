#include <Foundation/Backend/Icu/Unicode.h>
#include <Foundation/Backend/Pugixml/PropertyListXML.h>
#include <Foundation/Values.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>
#include <pugixml.hpp>

namespace flarebox::detail {

namespace {

constexpr std::size_t maximumSize = std::size_t{16} * 1024 * 1024;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view blanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

template <class Number, class... Format>
std::optional<Number> parse(std::string_view text, Format... format) {
    Number number{};
    auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number, format...);
    if (failure != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

Value integerFrom(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    if (text.starts_with("0x") || text.starts_with("0X")) {
        auto number = parse<std::uint64_t>(text.substr(2), 16);
        return number ? Value(*number) : Value();
    }
    if (auto number = parse<std::int64_t>(text)) return Value(*number);
    auto number = parse<std::uint64_t>(text);
    return number ? Value(*number) : Value();
}

Value realFrom(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    auto number = parse<double>(text);
    return number ? Value(*number) : Value();
}

/// 2026-01-31T12:34:56Z
Value dateFrom(std::string_view text) {
    constexpr std::string_view shape = "dddd-dd-ddTdd:dd:ddZ";
    bool matches = std::ranges::equal(text, shape, [](char character, char expected) {
        return expected == 'd' ? character >= '0' && character <= '9' : character == expected;
    });
    if (!matches) return {};
    auto number = [&](std::size_t offset, std::size_t length) {
        return parse<unsigned>(text.substr(offset, length)).value_or(0);
    };
    using namespace std::chrono;
    year_month_day day(year(static_cast<int>(number(0, 4))), month(number(5, 2)), std::chrono::day(number(8, 2)));
    unsigned hours = number(11, 2), minutes = number(14, 2), seconds = number(17, 2);
    if (!day.ok() || hours > 23 || minutes > 59 || seconds > 60) return {};
    double days = static_cast<double>(sys_days(day).time_since_epoch().count());
    return NSDate::dateWithTimeIntervalSince1970(days * 86400 + hours * 3600 + minutes * 60 + seconds);
}

/// Blanks alone in an element are kept for the sake of <string>; between values they mean nothing.
bool isBlank(pugi::xml_node node) {
    return node.type() == pugi::node_pcdata && trimmed(node.value()).empty();
}

class Reader {
public:
    Reader(std::string_view text, std::string_view fileName) : text_(text), fileName_(fileName) {}

    Value readDocument() {
        if (text_.size() > maximumSize) return fail(0, "larger than 16 MiB");
        if (text_.starts_with(byteOrderMark)) text_.remove_prefix(byteOrderMark.size());
        if (!isValidUTF8(text_)) return fail(0, "not valid UTF-8");
        // The document type is skipped unread: nothing is fetched, no entity but the five of XML is known.
        pugi::xml_document document;
        auto result = document.load_buffer(text_.data(), text_.size(),
                                           pugi::parse_default | pugi::parse_ws_pcdata_single, pugi::encoding_utf8);
        if (!result) return fail(result.offset, result.description());
        pugi::xml_node root = document.document_element();
        if (std::string_view(root.name()) != "plist") return fail(root, "no property list");
        Value value;
        for (pugi::xml_node child : root.children()) {
            if (isBlank(child)) continue;
            if (value) return fail(child, "more than one value");
            value = read(child, 1);
            if (failed()) return {};
        }
        return value ? value : fail(root, "no value");
    }

    bool failed() const { return !failure_.empty(); }
    const std::string& failure() const { return failure_; }

private:
    Value fail(std::ptrdiff_t offset, std::string_view what) {
        auto end = text_.begin() + std::clamp<std::ptrdiff_t>(offset, 0, std::ssize(text_));
        failure_ = fileName_.empty() ? "property list" : fileName_;
        failure_ += ':';
        failure_ += std::to_string(1 + std::count(text_.begin(), end, '\n'));
        failure_.append(": ").append(what);
        return {};
    }
    Value fail(pugi::xml_node node, std::string_view what) { return fail(node.offset_debug(), what); }

    Value read(pugi::xml_node node, int depth) {
        if (node.type() != pugi::node_element) return fail(node, "text where a value is expected");
        if (depth > maximumPropertyListDepth) return fail(node, "nested too deep");
        std::string_view name = node.name();
        if (name == "dict") return readDictionary(node, depth);
        if (name == "array") return readArray(node, depth);
        return readScalar(node, name);
    }

    Value readArray(pugi::xml_node node, int depth) {
        std::vector<Value> elements;
        for (pugi::xml_node child : node.children()) {
            if (isBlank(child)) continue;
            elements.push_back(read(child, depth + 1));
            if (failed()) return {};
        }
        return NSArray::arrayWithValues(std::move(elements));
    }

    Value readDictionary(pugi::xml_node node, int depth) {
        std::vector<NSDictionary::Entry> entries;
        for (pugi::xml_node key = node.first_child(); key; key = key.next_sibling()) {
            if (isBlank(key)) continue;
            if (std::string_view(key.name()) != "key") return fail(key, "a <key> is expected");
            auto keyText = textOf(key);
            if (!keyText) return {};
            pugi::xml_node value = key.next_sibling();
            if (!value) return fail(key, "key without a value");
            entries.emplace_back(NSString(*keyText), read(value, depth + 1));
            if (failed()) return {};
            key = value;
        }
        return NSDictionary::dictionaryWithEntries(std::move(entries));
    }

    Value readScalar(pugi::xml_node node, std::string_view name) {
        auto text = textOf(node);
        if (!text) return {};
        if (name == "string") return NSString(*text);
        if (name == "true") return Value(true);
        if (name == "false") return Value(false);
        std::string_view content = trimmed(*text);
        Value value;
        if (name == "integer")
            value = integerFrom(content);
        else if (name == "real")
            value = realFrom(content);
        else if (name == "date")
            value = dateFrom(content);
        else if (name == "data")
            value = NSData::dataWithBase64EncodedString(NSString(content));
        else
            return fail(node, "unknown element <" + std::string(name) + ">");
        return value ? value : fail(node, "no valid <" + std::string(name) + ">");
    }

    /// A text may come in several pieces, with comments or CDATA sections between.
    std::optional<std::string> textOf(pugi::xml_node node) {
        std::string text;
        for (pugi::xml_node child : node.children()) {
            if (child.type() != pugi::node_pcdata && child.type() != pugi::node_cdata) {
                fail(child, "an element where text is expected");
                return std::nullopt;
            }
            text += child.value();
        }
        // The library lets them pass, as they stand and as references.
        if (!isXMLText(text)) {
            fail(node, "a character that XML does not allow");
            return std::nullopt;
        }
        return text;
    }

    std::string_view text_;
    std::string_view fileName_;
    std::string failure_;
};

}  // namespace

Value readPropertyListXML(std::string_view text, std::string_view fileName, std::string& failure) {
    Reader reader(text, fileName);
    Value value = reader.readDocument();
    failure = reader.failure();
    return reader.failed() ? Value() : value;
}

}  // namespace flarebox::detail
