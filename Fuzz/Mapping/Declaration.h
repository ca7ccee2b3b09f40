#pragma once

#include <Fuzz/Support/ByteSource.h>

#include <Foundation/Values.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flarebox::fuzz {

/// What a hook does with a value.
enum class Verdict : std::uint8_t { Accept, AcceptWithError, Reject, RejectWithError, Replace, ReplaceByNothing };
/// What a class answers before a nested object is made.
enum class Creation : std::uint8_t { Default, Abort, ReadyObject, AbortWithObject };

/// The names that properties have; what hooks do depends on the place of the name, the last place standing for all
/// others.
inline constexpr std::array<std::string_view, 6> propertyNames = {"p", "q", "r", "a", "b.c", ""};
template <class Choice>
using ByProperty = std::array<Choice, propertyNames.size() + 1>;
std::size_t placeOf(std::string_view property);

/// One model class as the input declares it.
struct Declaration {
    struct Line {
        std::string_view name;
        std::string attribute;
        std::string_view jsonKey;
        /// Which of an object's fields it is kept in.
        std::size_t slot = 0;
    };

    std::string name;
    /// Its place among the input's classes; none for one directly below the root.
    std::optional<std::size_t> superclass;
    std::vector<Line> lines;
    NSDictionary mapping;
    /// By property.
    std::optional<std::map<std::string, NSDictionary, std::less<>>> valueMappings;
    /// Property name and class name.
    std::optional<std::vector<std::pair<std::string, std::string>>> elementClasses;
    std::optional<bool> setsUndefinedKeys;

    enum class Validation : std::uint8_t { None, Hook, Validators } validation = Validation::None;
    bool checksEquality = false, readsByName = false, writesByName = false, hearsUndefinedKeys = false;
    ByProperty<Verdict> valueVerdicts{}, elementVerdicts{};
    ByProperty<bool> equality{};
    ByProperty<Creation> creation{};
};

inline constexpr std::size_t mostClasses = 3, mostLines = 3, slotCount = mostClasses * mostLines;

/// At least one class; superclasses come first. The names differ from those of every earlier call.
std::vector<Declaration> makeDeclarations(ByteSource& source);

}  // namespace flarebox::fuzz
