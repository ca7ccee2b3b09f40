#include <Networking/AFJSONRequestSerializer.h>

#include <Foundation/NSJSONSerialization.h>
#include <Networking/NetworkError.h>

#include <algorithm>
#include <vector>

namespace flarebox {

namespace {

// Cycles cannot be told from depth; nobody sends a query that is nested deeper.
constexpr int maximumDepth = 64;

bool staysAsItIs(char letter) {
    constexpr std::string_view marks = "-._~/?";  // the last two may stand in a query
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9') ||
           marks.find(letter) != std::string_view::npos;
}

void appendEscaped(std::string& text, std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (char byte : bytes) {
        if (staysAsItIs(byte)) {
            text += byte;
            continue;
        }
        auto number = static_cast<unsigned char>(byte);
        text += '%';
        text += digits[number >> 4];
        text += digits[number & 15];
    }
}

std::string textOf(const Value& value) {
    if (auto number = value.as<NSNumber>()) return number.stringValue();
    if (auto url = value.as<NSURL>()) return url.absoluteString();
    return value.description();
}

/// Dictionaries by the text of their keys, sets by the text of their elements: the same parameters give the same query.
template <class Element, class Text>
std::vector<Element> sorted(std::span<const Element> elements, Text text) {
    std::vector<Element> result(elements.begin(), elements.end());
    std::stable_sort(result.begin(), result.end(),
                     [&](const Element& a, const Element& b) { return text(a) < text(b); });
    return result;
}

class QueryWriter {
public:
    void append(const std::string& key, const Value& value) {
        if (depth_ > maximumDepth) return;
        ++depth_;
        if (auto dictionary = value.as<NSDictionary>())
            appendDictionary(key, dictionary);
        else if (auto array = value.as<NSArray>())
            appendElements(key + "[]", array.elements());
        else if (auto ordered = value.as<NSOrderedSet>())
            appendElements(key + "[]", ordered.elements());
        else if (auto set = value.as<NSSet>())
            appendElements(key, sorted(set.elements(), textOf));
        else
            appendPair(key, value);
        --depth_;
    }

    std::string take() { return std::move(query_); }

private:
    void appendDictionary(const std::string& key, const NSDictionary& dictionary) {
        for (auto& [name, value] : sorted(dictionary.entries(), [](auto& entry) { return textOf(entry.first); })) {
            append(key.empty() ? textOf(name) : key + "[" + textOf(name) + "]", value);
        }
    }

    void appendElements(const std::string& key, std::span<const Value> elements) {
        for (auto& element : elements) append(key, element);
    }

    void appendPair(const std::string& key, const Value& value) {
        if (value.isAbsent()) return;
        if (!query_.empty()) query_ += '&';
        appendEscaped(query_, key);
        if (value.isNull()) return;
        query_ += '=';
        appendEscaped(query_, textOf(value));
    }

    std::string query_;
    int depth_ = 0;
};

bool travelsAsQuery(std::string_view method) {
    std::string upper(method);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter;
    });
    return upper == "GET" || upper == "HEAD" || upper == "DELETE";
}

std::string addressWithQuery(std::string address, const std::string& query) {
    if (query.empty()) return address;
    const auto fragment = std::min(address.find('#'), address.size());
    const bool hasQuery = address.find('?') < fragment;
    return address.insert(fragment, (hasQuery ? "&" : "?") + query);
}

}  // namespace

const ClassInfo& AFJSONRequestSerializer::staticClass() {
    static const ClassInfo info("AFJSONRequestSerializer", &NSObject::staticClass(), nullptr);
    return info;
}

Ref<AFJSONRequestSerializer> AFJSONRequestSerializer::serializer() {
    return make<AFJSONRequestSerializer>();
}

std::string AFJSONRequestSerializer::queryString(const Value& parameters) {
    QueryWriter writer;
    writer.append({}, parameters);
    return writer.take();
}

Ref<NSMutableURLRequest> AFJSONRequestSerializer::requestWithMethod(std::string_view method, const NSString& URLString,
                                                                    const Value& parameters,
                                                                    Ref<NSError>* error) const {
    Ref<NSError> reason;
    auto fail = [&] {
        if (error) *error = reason;
        return nullptr;
    };
    const bool asQuery = travelsAsQuery(method);
    std::string address = URLString.string();
    if (asQuery && parameters) address = addressWithQuery(std::move(address), queryString(parameters));

    NSURL url = NSURL::URLWithString(address);
    if (!url) {
        reason = networkError(NSURLErrorBadURL, address);
        return fail();
    }
    auto request = NSMutableURLRequest::requestWithURL(url);
    request->setHTTPMethod(std::string(method));
    if (asQuery || !parameters) return request;

    NSData body = NSJSONSerialization::dataWithJSONObject(parameters, &reason);
    if (!body) return fail();
    request->setHTTPBody(body);
    request->setValueForHTTPHeaderField("application/json", "Content-Type");
    return request;
}

}  // namespace flarebox
