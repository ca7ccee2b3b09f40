#include <Fuzz/Support/ByteSource.h>

#include <Fuzz/Support/Utf8.h>

#include <cmath>
#include <limits>
#include <vector>

namespace flarebox::fuzz {
namespace {

constexpr const char* names[] = {"a",         "b",
                                 "c",         "d",
                                 "id",        "uid",
                                 "title",     "name",
                                 "items",     "",
                                 "0",         "-1",
                                 "a.b",       "1",
                                 "true",      "null",
                                 ".",         "1.5",
                                 "12",        "TRUE",
                                 " 7",        "1e400",
                                 "é",         "1,5",
                                 "NaN",       "http://a.b/c?d",
                                 "aGk=",      "18446744073709551615",
                                 "2026-01-01"};

Value number(ByteSource& source) {
    static constexpr double remarkable[] = {0,    -0.0, 0.1,           1.5,   1e300, -1e300, 5e-324, 9007199254740993.0,
                                            1e19, 2e9,  -2147483649.0, 9.3e18};
    switch (source.below(6)) {
        case 0:
            return source.flag();
        case 1:
            return static_cast<int>(source.below(8)) - 3;
        case 2:
            return source.word<std::int64_t>();
        case 3:
            return source.word<std::uint64_t>();
        case 4:
            return source.pick(remarkable);
        default: {
            const auto any = source.word<double>();
            return std::isfinite(any) ? any : 0.5;
        }
    }
}

NSString string(ByteSource& source) {
    if (source.flag()) return source.pick(names);
    const std::string_view bytes = source.shortText();
    return isUtf8(bytes) ? NSString(bytes) : NSString("not UTF-8");
}

std::vector<Value> elements(ByteSource& source, int depth, bool isJSON) {
    std::vector<Value> values;
    for (std::size_t count = source.below(6); count > 0; --count) values.push_back(makeValue(source, depth, isJSON));
    return values;
}

NSDictionary dictionary(ByteSource& source, int depth, bool isJSON) {
    std::vector<NSDictionary::Entry> entries;
    for (std::size_t count = source.below(6); count > 0; --count) {
        Value key = string(source);
        entries.emplace_back(std::move(key), makeValue(source, depth, isJSON));
    }
    return NSDictionary::dictionaryWithEntries(std::move(entries));
}

Value otherKind(ByteSource& source, int depth) {
    switch (source.below(7)) {
        case 0: {
            constexpr double span = 1e11;
            const double seconds = source.word<std::int32_t>() * (span / std::numeric_limits<std::int32_t>::max());
            return NSDate::dateWithTimeIntervalSince1970(std::floor(seconds));
        }
        case 1:
            return NSURL::URLWithString(string(source));
        case 2:
            return NSData::dataWithBytes(source.shortText());
        case 3:
            return NSSet::setWithValues(elements(source, depth - 1, false));
        case 4:
            return NSOrderedSet::orderedSetWithValues(elements(source, depth - 1, false));
        case 5:
            return NSArray::arrayWithValues(elements(source, depth - 1, false)).mutableCopy();
        default:
            return dictionary(source, depth - 1, false).mutableCopy();
    }
}

}  // namespace

Value makeValue(ByteSource& source, int depth, bool isJSON) {
    switch (source.below(isJSON ? 6 : 7)) {
        case 0:
            return Value::null();
        case 1:
            return number(source);
        case 2:
        case 3:
            return string(source);
        case 4:
            if (depth > 0) return NSArray::arrayWithValues(elements(source, depth - 1, isJSON));
            return NSArray::array();
        case 5:
            if (depth > 0) return dictionary(source, depth - 1, isJSON);
            return NSDictionary::dictionary();
        default:
            return depth > 0 ? otherKind(source, depth) : Value(1.5);
    }
}

Value deepCopy(const Value& value) {
    if (const auto array = value.as<NSArray>()) {
        std::vector<Value> copies;
        for (const Value& element : array) copies.push_back(deepCopy(element));
        return NSArray::arrayWithValues(std::move(copies));
    }
    if (const auto object = value.as<NSDictionary>()) {
        std::vector<NSDictionary::Entry> copies;
        for (const auto& [key, entry] : object.entries()) copies.emplace_back(deepCopy(key), deepCopy(entry));
        return NSDictionary::dictionaryWithEntries(std::move(copies));
    }
    if (const auto string = value.as<NSString>()) return NSString(string.string());
    return value;
}

}  // namespace flarebox::fuzz
