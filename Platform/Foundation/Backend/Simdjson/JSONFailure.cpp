#include <Foundation/Backend/Simdjson/JSONFailure.h>

#include <algorithm>
#include <optional>

namespace flarebox::detail {
namespace {

namespace ondemand = simdjson::ondemand;

const char* reasonFor(simdjson::error_code error) {
    switch (error) {
        case simdjson::EMPTY:
            return "the document is empty";
        case simdjson::UTF8_ERROR:
            return "the text is not valid UTF-8";
        case simdjson::UNCLOSED_STRING:
            return "a text is not closed";
        case simdjson::UNESCAPED_CHARS:
            return "a text holds a control character that is not escaped";
        case simdjson::STRING_ERROR:
            return "a text holds a bad escape sequence";
        case simdjson::NUMBER_ERROR:
            return "a number is malformed or out of range";
        case simdjson::T_ATOM_ERROR:
        case simdjson::F_ATOM_ERROR:
        case simdjson::N_ATOM_ERROR:
            return "a word other than true, false and null";
        case simdjson::CAPACITY:
            return "the document is too large";
        case simdjson::MEMALLOC:
            return "there is not enough memory";
        default:
            return "the document is malformed";
    }
}

/// Walks the document until the walk fails.
class Walk {
public:
    explicit Walk(ondemand::document& document) : document_(document) {}

    bool scalarOrCollection(ondemand::value value) {
        ondemand::json_type type;
        if (value.type().get(type)) return fail();
        switch (type) {
            case ondemand::json_type::array:
                return array(value);
            case ondemand::json_type::object:
                return object(value);
            case ondemand::json_type::string:
                return !value.get_string().error() || fail();
            case ondemand::json_type::number:
                return !value.get_double().error() || fail();
            case ondemand::json_type::boolean:
                return !value.get_bool().error() || fail();
            case ondemand::json_type::null:
                return !value.is_null().error() || fail();
        }
        return fail();
    }

    template <class Source>
    bool array(Source& source) {
        ondemand::array array;
        if (source.get_array().get(array)) return fail();
        for (auto result : array) {
            ondemand::value element;
            if (result.get(element)) return fail();
            if (!scalarOrCollection(element)) return false;
        }
        return true;
    }

    template <class Source>
    bool object(Source& source) {
        ondemand::object object;
        if (source.get_object().get(object)) return fail();
        for (auto result : object) {
            ondemand::field field;
            if (std::move(result).get(field) || field.unescaped_key().error()) return fail();
            if (!scalarOrCollection(field.value())) return false;
        }
        return true;
    }

    const char* place() const { return place_; }

private:
    bool fail() {
        const char* place = nullptr;
        if (!place_ && !document_.current_location().get(place)) place_ = place;
        return false;
    }

    ondemand::document& document_;
    const char* place_ = nullptr;
};

std::optional<std::size_t> malformedPlace(std::string_view text, int maximumDepth) {
    const simdjson::padded_string padded(text);
    ondemand::parser parser;
    ondemand::document document;
    if (parser.allocate(text.size(), static_cast<std::size_t>(maximumDepth) + 1)) return std::nullopt;
    if (parser.iterate(padded).get(document)) return std::nullopt;
    Walk walk(document);
    ondemand::json_type type;
    if (document.type().get(type)) return std::nullopt;
    if (type == ondemand::json_type::array)
        walk.array(document);
    else if (type == ondemand::json_type::object)
        walk.object(document);
    else
        return std::nullopt;
    const char* place = walk.place();
    // What ended well and is followed by more leaves its end as the place.
    if (!place && document.current_location().get(place)) return std::nullopt;
    if (place < padded.data() || place > padded.data() + padded.size()) return std::nullopt;
    return static_cast<std::size_t>(place - padded.data());
}

/// Where the first malformed character begins.
std::size_t invalidCharacterPlace(std::string_view text) {
    std::size_t valid = 0;
    std::size_t end = text.size();
    while (valid < end) {
        const std::size_t middle = valid + (end - valid + 1) / 2;
        // A cut may divide one character of up to four bytes.
        std::size_t whole = middle;
        while (whole > valid && middle - whole < 4 && !simdjson::validate_utf8(text.data() + valid, whole - valid))
            --whole;
        if (whole > valid && simdjson::validate_utf8(text.data() + valid, whole - valid))
            valid = whole;
        else if (middle - valid <= 4)
            break;
        else
            end = middle - 1;
    }
    return valid;
}

std::string lineAndColumn(std::string_view text, std::size_t place) {
    const std::string_view before = text.substr(0, place);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineStart = before.rfind('\n') + 1;
    return "line " + std::to_string(line) + ", column " + std::to_string(place - lineStart + 1);
}

}  // namespace

std::string describeJSONFailure(simdjson::error_code error, std::string_view document, int maximumDepth) {
    if (error == simdjson::DEPTH_ERROR) {
        return "arrays and dictionaries are nested more than " + std::to_string(maximumDepth) + " deep";
    }
    const std::string reason = reasonFor(error);
    switch (error) {
        case simdjson::EMPTY:
        case simdjson::CAPACITY:
        case simdjson::MEMALLOC:
            return reason;
        case simdjson::UTF8_ERROR:
            return reason + " at " + lineAndColumn(document, invalidCharacterPlace(document));
        default:
            break;
    }
    const auto place = malformedPlace(document, maximumDepth);
    return place ? reason + " near " + lineAndColumn(document, *place) : reason;
}

}  // namespace flarebox::detail
