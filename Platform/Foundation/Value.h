#pragma once

#include <Foundation/Class.h>
#include <Foundation/Reference.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace flarebox {

class NSObject;

namespace detail {
struct Storage;  // reference-counted payload of text, data, links and collections
}

/// One nullable, immutable, shared handle for every value that JSON or a property can hold.
/// 16 bytes; copying never allocates. Handles may be passed between threads; the values behind them never change,
/// mutable collections aside, which belong to the code that made them until handed on.
class Value {
public:
    enum class Kind : std::uint8_t {
        Absent,  ///< no value at all, what the platform calls nil
        Null,    ///< the JSON null, a value of its own
        Number,
        String,
        Date,
        URL,
        Data,
        Array,
        Set,
        OrderedSet,
        Dictionary,
        Object,  ///< an NSObject, such as a record
    };

    constexpr Value() noexcept = default;
    constexpr Value(std::nullptr_t) noexcept {}
    Value(bool number) noexcept;
    template <std::integral I>
        requires(!std::same_as<I, bool>)
    Value(I number) noexcept : Value(fromInteger(number)) {}
    Value(double number) noexcept;
    Value(const char* text);
    Value(std::string_view text);
    Value(const std::string& text) : Value(std::string_view(text)) {}
    template <class T>
        requires std::derived_from<T, NSObject>
    Value(Ref<T> object) noexcept : Value(fromObject(Ref<NSObject>(std::move(object)))) {}
    Value(const Value& other) noexcept;
    Value(Value&& other) noexcept;
    Value& operator=(const Value& other) noexcept;
    Value& operator=(Value&& other) noexcept;
    ~Value();

    /// The JSON null.
    static Value null() noexcept;

    Kind kind() const noexcept { return kind_; }
    bool isAbsent() const noexcept { return kind_ == Kind::Absent; }
    bool isNull() const noexcept { return kind_ == Kind::Null; }
    /// True for everything but an absent value; the JSON null is present.
    explicit operator bool() const noexcept { return kind_ != Kind::Absent; }

    /// Identity: the very same object. Two numbers are the same when kind and digits are.
    bool isSameAs(const Value& other) const noexcept;
    /// Equality by content: numbers by numeric value whatever their kind, collections element by element.
    friend bool operator==(const Value& a, const Value& b) noexcept { return a.isEqual(b); }
    std::size_t hash() const noexcept;

    /// The class, NSString or FXAssetInfo for example; null when absent. NSNull for the JSON null.
    Class classOf() const noexcept;
    bool isKindOf(const ClassInfo& ancestor) const noexcept;

    /// Text for people: texts as they are, numbers in decimal, collections with their elements; "(null)" when absent, "<null>" for the JSON null.
    std::string description() const;

    /// The value as an NSString, NSNumber, … handle: absent when it is of another kind.
    template <class Typed>
    Typed as() const noexcept {
        return Typed::accepts(*this) ? Typed(*this, typename Typed::Checked{}) : Typed();
    }
    /// The NSObject held, as a T; null when there is none or it is of another class. Borrowed.
    template <class T = NSObject>
    T* object() const noexcept {
        return dynamic_cast<T*>(objectOrNull());
    }

protected:
    enum class NumberKind : std::uint8_t { Boolean, Signed, Unsigned, Floating };

    static Value fromSigned(std::int64_t number) noexcept;
    static Value fromUnsigned(std::uint64_t number) noexcept;
    static Value fromObject(Ref<NSObject> object) noexcept;
    template <class I>
    static Value fromInteger(I number) noexcept {
        if constexpr (std::is_signed_v<I>) return fromSigned(number);
        else return fromUnsigned(number);
    }
    NSObject* objectOrNull() const noexcept;
    bool isEqual(const Value& other) const noexcept;

    union Payload {
        std::uint64_t bits = 0;
        std::int64_t integer;
        double floating;
        detail::Storage* storage;
        NSObject* object;
    } payload_;
    Kind kind_ = Kind::Absent;
    NumberKind numberKind_ = NumberKind::Boolean;
    bool isMutable_ = false;
    std::uint32_t extra_ = 0;
};

}  // namespace flarebox

template <>
struct std::hash<flarebox::Value> {
    std::size_t operator()(const flarebox::Value& value) const noexcept { return value.hash(); }
};
