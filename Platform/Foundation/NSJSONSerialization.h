#pragma once

#include <Foundation/NSError.h>
#include <Foundation/Values.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace flarebox {

enum NSJSONReadingOptions : std::uint32_t {
    NSJSONReadingStrict = 0,
    /// The document may be a text, a number, a boolean or null instead of an array or a dictionary.
    NSJSONReadingAllowFragments = 4,
};

enum NSJSONWritingOptions : std::uint32_t {
    NSJSONWritingStrict = 0,
    /// The value may be a text, a number or null instead of an array or a dictionary.
    NSJSONWritingFragmentsAllowed = 4,
};

/// JSON (RFC 8259) to values and back. Any thread. Nothing here throws; failures are of NSCocoaErrorDomain, code 3840,
/// and their description says what is wrong and where.
class NSJSONSerialization {
public:
    /// Arrays and dictionaries nest at most this deep, in either direction.
    static constexpr int maximumDepth = 512;

    /// The value of the document, which is UTF-8 with or without a byte order mark; absent on failure, with the reason
    /// in `error` (which may be null). Integers keep every digit within 64 bits, larger ones become floating. Of equal
    /// keys the last one wins, at the place of the first. The texts and collections of one document share its memory:
    /// any of them keeps all of it.
    static Value JSONObjectWithData(const NSData& data, Ref<NSError>* error);
    static Value JSONObjectWithData(const NSData& data, NSJSONReadingOptions options, Ref<NSError>* error);
    static Value JSONObjectWithText(std::string_view text, NSJSONReadingOptions options, Ref<NSError>* error);

    /// UTF-8 without blanks, entries in order; absent on failure. Dates, data, links, sets, objects, numbers that are
    /// not finite, keys that are no texts and texts that are no UTF-8 have no JSON form; the error names the place.
    static NSData dataWithJSONObject(const Value& value, Ref<NSError>* error);
    static NSData dataWithJSONObject(const Value& value, NSJSONWritingOptions options, Ref<NSError>* error);
    /// Appends to `text`; false on failure, which leaves `text` as it was.
    static bool writeJSONObject(const Value& value, std::string& text, NSJSONWritingOptions options,
                                Ref<NSError>* error);
};

}  // namespace flarebox
