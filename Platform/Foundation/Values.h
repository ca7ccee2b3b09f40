#pragma once

// The typed handles over Value. Each is a Value that is either of its kind or absent; all are as cheap to pass as a
// Value.

#include <Foundation/Export.h>
#include <Foundation/Value.h>

#include <initializer_list>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace flarebox {

/// Shared by the typed handles: made from a Value of the right kind, absent otherwise.
#define FLAREBOX_TYPED_VALUE(Name)                    \
public:                                               \
    struct Checked {};                                \
    constexpr Name() noexcept = default;              \
    constexpr Name(std::nullptr_t) noexcept {}        \
    Name(const Value& value, Checked) noexcept {      \
        static_cast<Value&>(*this) = value;           \
    }                                                 \
    /* Whether the value is of this kind. */          \
    static bool accepts(const Value& value) noexcept; \
    static const ClassInfo& staticClass();

/// The JSON null, a value of its own.
class FLAREBOX_EXPORT NSNull : public Value {
    FLAREBOX_TYPED_VALUE(NSNull)
};

/// Immutable UTF-8 text.
class FLAREBOX_EXPORT NSString : public Value {
    FLAREBOX_TYPED_VALUE(NSString)
    NSString(const char* text) : Value(text) {}
    NSString(std::string_view text) : Value(text) {}
    NSString(const std::string& text) : Value(text) {}

    /// A text made of characters that live as long as the process, such as a literal: neither copied nor counted.
    static NSString stringWithConstant(std::string_view text);

    /// The bytes, valid as long as any handle to this text lives; empty when absent. May contain NUL; not
    /// NUL-terminated.
    std::string_view text() const noexcept;
    std::string string() const { return std::string(text()); }
    std::size_t length() const noexcept { return text().size(); }

    /// Leading decimal number after blanks, 0 when there is none. Never depends on the locale.
    double doubleValue() const noexcept;
    float floatValue() const noexcept;
    /// Leading integer after blanks, 0 when there is none; saturates at the ends of the 64-bit range.
    std::int64_t integerValue() const noexcept;

    friend bool operator==(const NSString& a, std::string_view b) noexcept { return a && a.text() == b; }
    friend bool operator==(const NSString& a, const char* b) noexcept { return a == std::string_view(b); }
    friend bool operator==(const NSString& a, const NSString& b) noexcept { return a.isEqual(b); }
};

/// The class of texts that can change. No text here can: it stands in the hierarchy, and no value is of it.
class FLAREBOX_EXPORT NSMutableString : public NSString {
    FLAREBOX_TYPED_VALUE(NSMutableString)
};

/// A number that remembers whether it was boolean, signed, unsigned or floating.
class FLAREBOX_EXPORT NSNumber : public Value {
    FLAREBOX_TYPED_VALUE(NSNumber)
    template <std::same_as<bool> B>
    NSNumber(B number) noexcept : Value(number) {}
    template <std::integral I>
    requires(!std::same_as<I, bool>) NSNumber(I number)
    noexcept : Value(number) {}
    NSNumber(double number) noexcept : Value(number) {}

    bool isBoolean() const noexcept { return numberKind_ == NumberKind::Boolean; }
    bool isFloating() const noexcept { return numberKind_ == NumberKind::Floating; }
    bool isUnsigned() const noexcept { return numberKind_ == NumberKind::Unsigned; }

    /// Conversions of an absent number give 0 or false. Out-of-range values saturate; NaN gives 0 as an integer.
    bool boolValue() const noexcept;
    std::int64_t integerValue() const noexcept;
    std::uint64_t unsignedIntegerValue() const noexcept;
    double doubleValue() const noexcept;
    float floatValue() const noexcept { return static_cast<float>(doubleValue()); }
    int intValue() const noexcept;
    /// Decimal text, with as many digits as make the number come back the same: "12", "1.5", "1" for true.
    std::string stringValue() const;

private:
    friend class Value;
    bool compares(const NSNumber& other) const noexcept;
    std::size_t hashOfNumber() const noexcept;
};

/// A moment, in seconds of the UTC time scale.
class FLAREBOX_EXPORT NSDate : public Value {
    FLAREBOX_TYPED_VALUE(NSDate)
    static NSDate dateWithTimeIntervalSince1970(double seconds) noexcept;
    /// The current moment of the clock in force (Foundation/Clock.h).
    static NSDate date();

    double timeIntervalSince1970() const noexcept;
    /// Seconds from `earlier` to this date.
    double timeIntervalSinceDate(const NSDate& earlier) const noexcept;
};

/// A link, parsed as the platform does (RFC 3986): absolute or relative, refused when it holds characters a link cannot
/// hold.
class FLAREBOX_EXPORT NSURL : public Value {
    FLAREBOX_TYPED_VALUE(NSURL)
    /// Absent when the text is empty or no link.
    static NSURL URLWithString(const NSString& text);

    /// The whole text of the link; empty when absent.
    std::string absoluteString() const;
    /// Lower-case scheme without the colon ("https"); empty when relative.
    std::string scheme() const;
    /// Percent escapes resolved, an IPv6 address without its brackets; empty when there is none.
    std::string host() const;
    /// Percent escapes resolved; empty when there is none.
    std::string path() const;
    /// As written, without the question mark; empty when there is none.
    std::string query() const;
    /// 0 to 65535; none when the link names no port.
    std::optional<int> port() const;
};

/// Immutable bytes.
class FLAREBOX_EXPORT NSData : public Value {
    FLAREBOX_TYPED_VALUE(NSData)
    static NSData dataWithBytes(std::span<const std::byte> bytes);
    static NSData dataWithBytes(std::string_view bytes);
    /// Takes the buffer over without copying.
    static NSData dataWithString(std::string&& bytes);
    /// Decodes Base64 (RFC 4648), skipping characters outside the alphabet; absent when what is left is no Base64.
    static NSData dataWithBase64EncodedString(const NSString& text);

    std::span<const std::byte> bytes() const noexcept;
    std::string_view text() const noexcept;
    std::size_t length() const noexcept { return bytes().size(); }
    std::string base64EncodedString() const;
};

/// The class of bytes that can change; as with NSMutableString, no value is of it.
class FLAREBOX_EXPORT NSMutableData : public NSData {
    FLAREBOX_TYPED_VALUE(NSMutableData)
};

/// Values in order. Absent values are left out. `NSArray{}` is absent like every default; `array()` is empty.
class FLAREBOX_EXPORT NSArray : public Value {
    FLAREBOX_TYPED_VALUE(NSArray)
    NSArray(std::initializer_list<Value> elements);
    static NSArray array() { return arrayWithValues({}); }
    static NSArray arrayWithValues(std::vector<Value> elements);

    std::size_t count() const noexcept { return elements().size(); }
    /// Empty when absent. Valid as long as a handle to the array lives and, for a mutable one, until the next change.
    std::span<const Value> elements() const noexcept;
    /// Absent when the index is out of range.
    Value objectAtIndex(std::size_t index) const noexcept;
    const Value* begin() const noexcept { return elements().data(); }
    const Value* end() const noexcept { return begin() + count(); }

    NSArray copy() const;
    class NSMutableArray mutableCopy() const;
};

/// An array that can change; belongs to the code that made it until it is handed on.
class FLAREBOX_EXPORT NSMutableArray : public NSArray {
    FLAREBOX_TYPED_VALUE(NSMutableArray)
    static NSMutableArray array();
    void addObject(Value value);
    void removeObjectAtIndex(std::size_t index);
    void replaceObjectAtIndex(std::size_t index, Value value);
};

/// Distinct values; keeps the order in which they came, although equality does not depend on it.
class FLAREBOX_EXPORT NSSet : public Value {
    FLAREBOX_TYPED_VALUE(NSSet)
    static NSSet setWithValues(std::span<const Value> elements);
    std::size_t count() const noexcept { return elements().size(); }
    std::span<const Value> elements() const noexcept;
    bool containsObject(const Value& value) const noexcept;
};
/// The class of sets that can change; no value is of it.
class FLAREBOX_EXPORT NSMutableSet : public NSSet {
    FLAREBOX_TYPED_VALUE(NSMutableSet)
    static NSMutableSet setWithValues(std::span<const Value> elements);
};
/// Distinct values, in an order that counts.
class FLAREBOX_EXPORT NSOrderedSet : public Value {
    FLAREBOX_TYPED_VALUE(NSOrderedSet)
    static NSOrderedSet orderedSetWithValues(std::span<const Value> elements);
    std::size_t count() const noexcept { return elements().size(); }
    std::span<const Value> elements() const noexcept;
    bool containsObject(const Value& value) const noexcept;
};
/// The class of ordered sets that can change; no value is of it.
class FLAREBOX_EXPORT NSMutableOrderedSet : public NSOrderedSet {
    FLAREBOX_TYPED_VALUE(NSMutableOrderedSet)
    static NSMutableOrderedSet orderedSetWithValues(std::span<const Value> elements);
};

/// Keys and values; keeps the order in which the keys arrived. Looking a text key up allocates nothing.
class FLAREBOX_EXPORT NSDictionary : public Value {
    FLAREBOX_TYPED_VALUE(NSDictionary)
    using Entry = std::pair<Value, Value>;
    /// The last of several entries with equal keys wins, at the place of the first. Entries without a value are left
    /// out.
    NSDictionary(std::initializer_list<Entry> entries);
    /// An empty one; `NSDictionary{}` is absent like every default.
    static NSDictionary dictionary() { return dictionaryWithEntries({}); }
    static NSDictionary dictionaryWithEntries(std::vector<Entry> entries);

    std::size_t count() const noexcept { return entries().size(); }
    std::span<const Entry> entries() const noexcept;
    /// Absent when there is no such key.
    Value objectForKey(std::string_view key) const noexcept;
    Value objectForKey(const char* key) const noexcept { return objectForKey(std::string_view(key)); }
    Value objectForKey(const std::string& key) const noexcept { return objectForKey(std::string_view(key)); }
    Value objectForKey(const Value& key) const noexcept;
    NSArray allKeys() const;
    NSArray allValues() const;

    NSDictionary copy() const;
    class NSMutableDictionary mutableCopy() const;
};

/// A dictionary that can change; belongs to the code that made it until it is handed on.
class FLAREBOX_EXPORT NSMutableDictionary : public NSDictionary {
    FLAREBOX_TYPED_VALUE(NSMutableDictionary)
    static NSMutableDictionary dictionary();
    /// An absent value removes the entry.
    void setObject(Value value, const Value& key);
    void removeObjectForKey(const Value& key);
};

#undef FLAREBOX_TYPED_VALUE

}  // namespace flarebox
