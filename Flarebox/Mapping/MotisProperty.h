#pragma once

// What a property of a model class can be: its C++ type, where its value is kept, and its declared type as text.

#include <Foundation/Export.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

namespace flarebox {

class MotisObject;

/// Whether the other side may leave a property out.
enum class Presence : std::uint8_t { Required, Optional };

/// One line of a model class's property table. Its texts live as long as the process.
struct MotisProperty {
    Property property;
    /// The JSON key or dotted key path of the property; empty when the line names none.
    std::string_view jsonKey;
    Presence presence = Presence::Required;
    /// Where an object property keeps its value; null for scalar properties.
    Value MotisObject::*field = nullptr;
};

namespace detail {

template <std::size_t Length>
struct ClassText {
    char characters[Length];
    consteval ClassText(const char (&text)[Length]) {
        for (std::size_t index = 0; index < Length; ++index) characters[index] = text[index];
    }
    constexpr std::string_view text() const { return {characters, Length - 1}; }
};

FLAREBOX_EXPORT std::string objectTypeAttribute(std::string_view className);

FLAREBOX_EXPORT std::int64_t signedFromValue(const Value& value, std::int64_t lowest, std::int64_t highest) noexcept;
FLAREBOX_EXPORT std::uint64_t unsignedFromValue(const Value& value, std::uint64_t highest) noexcept;
FLAREBOX_EXPORT double floatingFromValue(const Value& value) noexcept;
FLAREBOX_EXPORT bool boolFromValue(const Value& value) noexcept;

}  // namespace detail

/// Property type for a class given by name, protocols included: `Declared<"NSArray<Ordered>">`. Read as a plain Value.
template <detail::ClassText ClassName>
struct Declared {};

/// How a property of type T is stored, read and written. Object properties keep whatever was assigned by name and read
/// as absent (or null) when that is not a T; scalar properties convert.
template <class T>
struct PropertyType;

template <std::derived_from<Value> T>
struct PropertyType<T> {
    using Stored = Value;
    using Access = T;
    static Access read(const Value& stored) {
        if constexpr (std::same_as<T, Value>)
            return stored;
        else
            return stored.as<T>();
    }
    static Value write(Access value) { return value; }
    static std::string_view attribute() {
        if constexpr (std::same_as<T, Value>)
            return "T@";
        else {
            static const std::string text = detail::objectTypeAttribute(T::staticClass().name());
            return text;
        }
    }
};

template <class T>
struct PropertyType<Ref<T>> {
    using Stored = Value;
    using Access = Ref<T>;
    static Access read(const Value& stored) { return Access(stored.object<T>()); }
    static Value write(Access value) { return value ? Value(std::move(value)) : Value(); }
    static std::string_view attribute() {
        // By name where there is one: the classes of two models may name each other before either exists.
        static const std::string text = detail::objectTypeAttribute([] {
            if constexpr (requires { T::motisClassName(); })
                return T::motisClassName();
            else
                return T::staticClass().name();
        }());
        return text;
    }
};

template <detail::ClassText ClassName>
struct PropertyType<Declared<ClassName>> {
    using Stored = Value;
    using Access = Value;
    static Access read(const Value& stored) { return stored; }
    static Value write(Access value) { return value; }
    static std::string_view attribute() {
        static const std::string text = detail::objectTypeAttribute(ClassName.text());
        return text;
    }
};

template <class T>
requires std::is_arithmetic_v<T>
struct PropertyType<T> {
    using Stored = T;
    using Access = T;
    static Access read(T stored) { return stored; }
    static T write(T value) { return value; }

    /// A number of any kind, saturated at the ends of T's range; the leading number of a text; 0 for anything else.
    static T fromValue(const Value& value) noexcept {
        using Limits = std::numeric_limits<T>;
        if constexpr (std::same_as<T, bool>)
            return detail::boolFromValue(value);
        else if constexpr (std::same_as<T, float>) {
            const double number = detail::floatingFromValue(value);
            if (number > static_cast<double>(Limits::max())) return Limits::infinity();
            if (number < static_cast<double>(Limits::lowest())) return -Limits::infinity();
            return static_cast<T>(number);
        } else if constexpr (std::is_floating_point_v<T>)
            return static_cast<T>(detail::floatingFromValue(value));
        else if constexpr (std::is_signed_v<T>)
            return static_cast<T>(detail::signedFromValue(value, Limits::min(), Limits::max()));
        else
            return static_cast<T>(detail::unsignedFromValue(value, Limits::max()));
    }
    static Value toValue(T stored) {
        if constexpr (std::is_floating_point_v<T>)
            return static_cast<double>(stored);
        else
            return stored;
    }
    static constexpr std::string_view attribute() {
        if constexpr (std::same_as<T, bool>)
            return "TB";
        else if constexpr (std::same_as<T, float>)
            return "Tf";
        else if constexpr (std::is_floating_point_v<T>)
            return "Td";
        else if constexpr (sizeof(T) == 1)
            return std::is_signed_v<T> ? "Tc" : "TC";
        else if constexpr (sizeof(T) == 2)
            return std::is_signed_v<T> ? "Ts" : "TS";
        else if constexpr (sizeof(T) == 4)
            return std::is_signed_v<T> ? "Ti" : "TI";
        else
            return std::is_signed_v<T> ? "Tq" : "TQ";
    }
};

namespace detail {

template <class Field>
struct FieldPointer;
template <class Owner_, class Stored_>
struct FieldPointer<Stored_ Owner_::*> {
    using Owner = Owner_;
    using Stored = Stored_;
};

/// The table line of the property of type T that is kept in `Field`.
template <class T, auto Field>
MotisProperty declareProperty(std::string_view name, std::string_view jsonKey = {},
                              Presence presence = Presence::Required) {
    using Owner = typename FieldPointer<decltype(Field)>::Owner;
    using Stored = typename FieldPointer<decltype(Field)>::Stored;
    MotisProperty line;
    line.jsonKey = jsonKey;
    line.presence = presence;
    line.property.name = name;
    line.property.typeAttribute = PropertyType<T>::attribute();
    line.property.get = [](const NSObject& object) -> Value {
        const auto& stored = static_cast<const Owner&>(object).*Field;
        if constexpr (std::same_as<Stored, Value>)
            return stored;
        else
            return PropertyType<T>::toValue(stored);
    };
    line.property.set = [](NSObject& object, const Value& value) {
        auto& stored = static_cast<Owner&>(object).*Field;
        if constexpr (std::same_as<Stored, Value>)
            stored = value;
        else
            stored = PropertyType<T>::fromValue(value);
    };
    if constexpr (std::same_as<Stored, Value>) line.field = static_cast<Value MotisObject::*>(Field);
    return line;
}

}  // namespace detail

}  // namespace flarebox
