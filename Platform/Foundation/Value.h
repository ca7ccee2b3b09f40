#pragma once

#include <Foundation/Class.h>
#include <Foundation/Export.h>
#include <Foundation/Reference.h>

#include <atomic>
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

/// Reference-counted payload of texts, links, data and collections.
class FLAREBOX_EXPORT Storage {
public:
    Storage() = default;
    Storage(const Storage&) = delete;
    Storage& operator=(const Storage&) = delete;

    void retain() noexcept { references_.fetch_add(1, std::memory_order_relaxed); }
    void release() noexcept {
        if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) destroy();
    }

protected:
    virtual ~Storage() = default;

private:
    void destroy() noexcept;

    std::atomic<std::uint64_t> references_{1};
    /// Links the storages whose destruction is under way, so that deep nesting needs no deep stack.
    Storage* nextToDestroy_ = nullptr;
};

struct ValueAccess;

}  // namespace detail

/// One nullable, immutable, shared handle for every value that JSON or a property can hold.
/// 16 bytes; copying never allocates. Handles may be passed between threads; the values behind them never change,
/// mutable collections aside, which belong to the code that made them until handed on.
class FLAREBOX_EXPORT Value {
public:
    /// What a value is.
    enum class Kind : std::uint8_t {
        Absent,      ///< no value at all, what the platform calls nil
        Null,        ///< the JSON null, a value of its own
        Number,      ///< NSNumber
        String,      ///< NSString
        Date,        ///< NSDate
        URL,         ///< NSURL
        Data,        ///< NSData
        Array,       ///< NSArray
        Set,         ///< NSSet
        OrderedSet,  ///< NSOrderedSet
        Dictionary,  ///< NSDictionary
        Object,      ///< an NSObject, such as a record
    };

    constexpr Value() noexcept = default;
    constexpr Value(std::nullptr_t) noexcept {}  ///< absent
    /// Of a boolean itself, never of a pointer that could be read as one.
    template <std::same_as<bool> B>
    Value(B number) noexcept : Value(fromBoolean(number)) {}
    /// Keeps every digit.
    template <std::integral I>
    requires(!std::same_as<I, bool>) Value(I number)
    noexcept : Value(fromInteger(number)) {}
    Value(double number) noexcept;  ///< may be infinite or no number
    Value(const char* text);        ///< UTF-8, copied; null is absent
    Value(std::string_view text);   ///< UTF-8, copied
    /// UTF-8, copied.
    Value(const std::string& text) : Value(std::string_view(text)) {}
    /// Owns the object too; absent for null.
    template <class T>
    requires std::derived_from<T, NSObject> Value(Ref<T> object)
    noexcept : Value(fromObject(Ref<NSObject>(std::move(object)))) {}
    /// The same value, shared.
    Value(const Value& other) noexcept
        : payload_(other.payload_),
          kind_(other.kind_),
          numberKind_(other.numberKind_),
          isMutable_(other.isMutable_),
          holding_(other.holding_),
          extra_(other.extra_) {
        if (holding_ != Holding::Nothing) retain();
    }
    /// Leaves the other one absent, unless it is an element of a collection.
    Value(Value&& other) noexcept
        : payload_(other.payload_),
          kind_(other.kind_),
          numberKind_(other.numberKind_),
          isMutable_(other.isMutable_),
          holding_(other.holding_),
          extra_(other.extra_) {
        if (holding_ == Holding::Borrowed) {
            retain();
        } else {
            other.kind_ = Kind::Absent;
            other.holding_ = Holding::Nothing;
        }
    }
    /// The same value, shared.
    Value& operator=(const Value& other) noexcept { return *this = Value(other); }
    /// As the constructor that moves.
    Value& operator=(Value&& other) noexcept {
        Value taken(std::move(other));
        swap(taken);
        return *this;
    }
    ~Value() {
        if (holding_ > Holding::Borrowed) release();
    }

    /// The JSON null.
    static Value null() noexcept;

    Kind kind() const noexcept { return kind_; }                      ///< what it is
    bool isAbsent() const noexcept { return kind_ == Kind::Absent; }  ///< what the platform calls nil
    bool isNull() const noexcept { return kind_ == Kind::Null; }      ///< the JSON null
    /// True for everything but an absent value; the JSON null is present.
    explicit operator bool() const noexcept { return kind_ != Kind::Absent; }

    /// Identity: the very same object. Two numbers are the same when kind and digits are.
    bool isSameAs(const Value& other) const noexcept;
    /// Equality by content: numbers by numeric value whatever their kind, collections element by element.
    friend bool operator==(const Value& a, const Value& b) noexcept { return a.isEqual(b); }
    std::size_t hash() const noexcept;  ///< equal for equal values

    /// The class, NSString or FXAssetInfo for example; null when absent. NSNull for the JSON null.
    Class classOf() const noexcept;
    /// Whether its class is that one or derives from it; false when absent.
    bool isKindOf(const ClassInfo& ancestor) const noexcept;

    /// Text for people: texts as they are, numbers in decimal, collections with their elements; "(null)" when absent,
    /// "<null>" for the JSON null.
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

    /// @cond
protected:
    friend struct detail::ValueAccess;

    enum class NumberKind : std::uint8_t { Boolean, Signed, Unsigned, Floating };

    /// What the payload keeps alive.
    enum class Holding : std::uint8_t {
        Nothing,   ///< a number, a date, or a text that lives as long as the process
        Borrowed,  ///< an element inside a document: the document is counted only once a copy leaves it
        Document,  ///< `extra_` says where in the document
        Block,     ///< a storage of its own
        Object,
    };

    static Value fromBoolean(bool number) noexcept;
    static Value fromSigned(std::int64_t number) noexcept;
    static Value fromUnsigned(std::uint64_t number) noexcept;
    static Value fromObject(Ref<NSObject> object) noexcept;
    template <class I>
    static Value fromInteger(I number) noexcept {
        if constexpr (std::is_signed_v<I>)
            return fromSigned(number);
        else
            return fromUnsigned(number);
    }
    NSObject* objectOrNull() const noexcept { return kind_ == Kind::Object ? payload_.object : nullptr; }
    bool isEqual(const Value& other) const noexcept;
    void swap(Value& other) noexcept;

    union Payload {
        std::uint64_t bits = 0;
        std::int64_t integer;
        double floating;
        const char* text;
        detail::Storage* storage;
        NSObject* object;
    } payload_;
    Kind kind_ = Kind::Absent;
    NumberKind numberKind_ = NumberKind::Boolean;
    bool isMutable_ = false;
    Holding holding_ = Holding::Nothing;
    std::uint32_t extra_ = 0;

    /// @endcond
private:
    void retain() noexcept {
        if (holding_ == Holding::Object) return detail::retain(payload_.object);
        payload_.storage->retain();
        if (holding_ == Holding::Borrowed) holding_ = Holding::Document;
    }
    void release() noexcept {
        if (holding_ == Holding::Object) return detail::release(payload_.object);
        payload_.storage->release();
    }
};

static_assert(sizeof(Value) == 16);

/// @cond
inline void Value::swap(Value& other) noexcept {
    std::swap(payload_, other.payload_);
    std::swap(kind_, other.kind_);
    std::swap(numberKind_, other.numberKind_);
    std::swap(isMutable_, other.isMutable_);
    std::swap(holding_, other.holding_);
    std::swap(extra_, other.extra_);
}

}  // namespace flarebox

template <>
struct std::hash<flarebox::Value> {
    std::size_t operator()(const flarebox::Value& value) const noexcept { return value.hash(); }
};
/// @endcond
