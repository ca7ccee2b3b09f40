#pragma once

#include <Foundation/Class.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox {

/// Whether a type attribute denotes an object property (`T@…`) rather than a scalar.
bool mts_isClassTypeTypeAttribute(std::string_view typeAttribute);

/// What an object property's type attribute names. Only the first group of protocols in angle brackets is read.
struct MTSClassType {
    /// None for a scalar attribute, empty for an object of unspecified class.
    std::optional<std::string> className;
    /// None unless the attribute names a class.
    std::optional<std::vector<std::string>> protocols;
};
MTSClassType mts_getClassName(std::string_view typeAttribute);

/// The kinds of class that the automatic conversions tell apart.
enum class ClassKind : std::uint8_t {
    Other,
    URL,
    Data,
    Number,
    Date,
    String,
    MutableArray,
    Array,
    MutableSet,
    Set,
    MutableOrderedSet,
    OrderedSet,
    MutableDictionary,
    Dictionary,
    Model,
};
ClassKind kindOfClass(const ClassInfo& cls);

/// A type attribute as the conversions need it.
struct TypeRule {
    enum class Kind : std::uint8_t {
        Anything,  ///< no such property, or an object of unspecified class
        Nothing,   ///< a class that nobody registered: only an absent value fits
        Scalar,
        Object,
    };
    Kind kind = Kind::Anything;
    ClassKind classKind = ClassKind::Other;
    /// The attribute without its leading "T"; 'B', 'Q', …
    char scalarCode = 0;
    Class targetClass = nullptr;
};
/// An empty attribute stands for "no such property".
TypeRule typeRule(std::string_view typeAttribute);

}  // namespace flarebox
