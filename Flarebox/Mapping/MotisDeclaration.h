#pragma once

// The macro that declares a model class, and the templates that read the class's static members and hooks.

#include <Flarebox/Mapping/Motis.h>
#include <Foundation/Export.h>
#include <Foundation/Immortal.h>

#include <concepts>
#include <type_traits>

namespace flarebox {

/// For a model class's list of validators: the member function that checks one property.
template <auto Member>
PropertyValidator validator(std::string_view property) {
    return {property, [](MotisObject& object, Value& value, Ref<NSError>& error) {
                auto invoke = [&]<class Owner>(bool (Owner::*member)(Value&, Ref<NSError>&)) {
                    return (static_cast<Owner&>(object).*member)(value, error);
                };
                return invoke(Member);
            }};
}

namespace detail {

/// Reads what a model class declares. Plain C++ name lookup is what makes a declaration inherited. Exported, so that a
/// class declared in a header is the same one in the game and in the library.
template <class T, class Superclass>
struct FLAREBOX_EXPORT MotisDeclarationReader {
    static const MotisClass& makeClass(std::string_view name) {
        static Immortal<MotisClass> cls(name, Superclass::staticClass(), &create, T::motisProperties(), declarations());
        return *cls;
    }

private:
    template <auto A, auto B>
    static constexpr bool isSame() {
        if constexpr (std::same_as<decltype(A), decltype(B)>)
            return A == B;
        else
            return false;
    }

    template <class C>
    static Ref<NSObject> created() {
        if constexpr (requires {
                          { C::init() } -> std::same_as<Ref<C>>;
                      }) {
            return C::init();
        } else if constexpr (std::is_abstract_v<C>) {
            return nullptr;
        } else {
            return make<C>();
        }
    }
    static Ref<NSObject> create() { return created<T>(); }

    // One of these per declaration: whether C has it, and whether T has one of its own.
#define FLAREBOX_READ_DECLARATION(Declaration)                  \
    template <class C>                                          \
    static constexpr bool has_##Declaration() {                 \
        return requires {                                       \
            &C::Declaration;                                    \
        };                                                      \
    }                                                           \
    template <class C, class S>                                 \
    static constexpr bool owns_##Declaration() {                \
        if constexpr (!has_##Declaration<C>())                  \
            return false;                                       \
        else if constexpr (!has_##Declaration<S>())             \
            return true;                                        \
        else                                                    \
            return !isSame<&C::Declaration, &S::Declaration>(); \
    }
    FLAREBOX_READ_DECLARATION(mts_mapping)
    FLAREBOX_READ_DECLARATION(mts_valueMappingForKey)
    FLAREBOX_READ_DECLARATION(mts_arrayClassMapping)
    FLAREBOX_READ_DECLARATION(mts_shouldSetUndefinedKeys)
    FLAREBOX_READ_DECLARATION(mts_validationDateFormatter)
    FLAREBOX_READ_DECLARATION(validators)
#undef FLAREBOX_READ_DECLARATION

    static MotisDeclarations declarations() {
        MotisDeclarations found;
        if constexpr (owns_mts_mapping<T, Superclass>()) found.mapping = &T::mts_mapping;
        if constexpr (owns_mts_valueMappingForKey<T, Superclass>())
            found.valueMappingForKey = &T::mts_valueMappingForKey;
        if constexpr (owns_mts_arrayClassMapping<T, Superclass>()) found.arrayClassMapping = &T::mts_arrayClassMapping;
        if constexpr (owns_validators<T, Superclass>()) found.validators = &T::validators;
        if constexpr (has_mts_shouldSetUndefinedKeys<T>())
            found.shouldSetUndefinedKeys = &T::mts_shouldSetUndefinedKeys;
        if constexpr (has_mts_validationDateFormatter<T>())
            found.validationDateFormatter = &T::mts_validationDateFormatter;
        found.hooks = hooks<T>();
        return found;
    }

    // A member function keeps the type of the class that last defined it, which tells an override without calling it.
    // One that cannot be named from here is taken for an override.
#define FLAREBOX_OVERRIDES(Root, Hook)                                       \
    [] {                                                                     \
        if constexpr (requires { &C::Hook; })                                \
            return !std::same_as<decltype(&C::Hook), decltype(&Root::Hook)>; \
        else                                                                 \
            return true;                                                     \
    }()
    template <class C>
    static constexpr OverriddenHooks hooks() {
        OverriddenHooks found;
        found.validatesValues =
            FLAREBOX_OVERRIDES(MotisObject, mts_validateValue) || FLAREBOX_OVERRIDES(MotisObject, validateValue);
        found.checksEquality = FLAREBOX_OVERRIDES(MotisObject, mts_checkValueEqualityBeforeAssignmentForKey);
        found.hearsUndefinedKeys = FLAREBOX_OVERRIDES(MotisObject, mts_ignoredSetValueForUndefinedMappingKey);
        found.readsByName = FLAREBOX_OVERRIDES(NSObject, valueForKey);
        found.writesByName = FLAREBOX_OVERRIDES(NSObject, setValue);
        found.checksElements = FLAREBOX_OVERRIDES(MotisObject, mts_validateArrayObjectForArrayKey);
        found.tendsNestedObjects = FLAREBOX_OVERRIDES(MotisObject, mts_willCreateObjectOfClass) ||
                                   FLAREBOX_OVERRIDES(MotisObject, mts_didCreateObject);
        return found;
    }
#undef FLAREBOX_OVERRIDES
};

}  // namespace detail
}  // namespace flarebox

// Applies a macro to each of its further arguments.
#define FLAREBOX_PARENTHESES ()
#define FLAREBOX_EXPAND(...) FLAREBOX_EXPAND3(FLAREBOX_EXPAND3(FLAREBOX_EXPAND3(FLAREBOX_EXPAND3(__VA_ARGS__))))
#define FLAREBOX_EXPAND3(...) FLAREBOX_EXPAND2(FLAREBOX_EXPAND2(FLAREBOX_EXPAND2(FLAREBOX_EXPAND2(__VA_ARGS__))))
#define FLAREBOX_EXPAND2(...) FLAREBOX_EXPAND1(FLAREBOX_EXPAND1(FLAREBOX_EXPAND1(FLAREBOX_EXPAND1(__VA_ARGS__))))
#define FLAREBOX_EXPAND1(...) __VA_ARGS__
#define FLAREBOX_EACH(macro, ...) __VA_OPT__(FLAREBOX_EXPAND(FLAREBOX_EACH_STEP(macro, __VA_ARGS__)))
#define FLAREBOX_EACH_STEP(macro, line, ...) \
    macro line __VA_OPT__(FLAREBOX_EACH_AGAIN FLAREBOX_PARENTHESES(macro, __VA_ARGS__))
#define FLAREBOX_EACH_AGAIN() FLAREBOX_EACH_STEP

#define FLAREBOX_PROPERTY(getter, setter, Type, ...)                         \
public:                                                                      \
    ::flarebox::PropertyType<Type>::Access getter() const {                  \
        return ::flarebox::PropertyType<Type>::read(getter##_);              \
    }                                                                        \
    void setter(::flarebox::PropertyType<Type>::Access value) {              \
        getter##_ = ::flarebox::PropertyType<Type>::write(std::move(value)); \
    }                                                                        \
                                                                             \
private:                                                                     \
    ::flarebox::PropertyType<Type>::Stored getter##_{};

#define FLAREBOX_PROPERTY_LINE(getter, setter, Type, ...) \
    ::flarebox::detail::declareProperty<Type, &MotisSelf::getter##_>(#getter __VA_OPT__(, ) __VA_ARGS__),

/// Declares a model class: first in the body of a class that derives from MotisObject or from another model class, with
/// the class, its superclass and one line for each property:
///
///     class Player : public MotisObject {
///         FLAREBOX_MODEL(Player, MotisObject,
///             (name,  setName,  NSString,    "name"),           // getter, setter, type, JSON key or dotted key path
///             (score, setScore, std::int64_t),                  // no key: filled by other means, or not at all
///             (team,  setTeam,  Ref<Team>,   "team", Optional)) // the other side may leave it out
///     };
///
/// Types: NSString, NSNumber, NSDate, NSArray and the other value handles, mutable ones included; Value for "any
/// object"; Ref<Class>; Declared<"Class<Protocol>">; and arithmetic types, which start at zero
/// and go back to it when an absent value is assigned.
///
/// The class may further define, as public static members, `mts_mapping()` (in place of the keys of the lines),
/// `mts_valueMappingForKey(property)`, `mts_arrayClassMapping()`, `mts_shouldSetUndefinedKeys()`,
/// `mts_validationDateFormatter()` and `validators()`, as MotisClass describes them, and override the hooks of
/// MotisObject. A class without this line counts as its superclass.
#define FLAREBOX_MODEL(Name, Superclass, ...)                                                  \
public:                                                                                        \
    static constexpr std::string_view motisClassName() {                                       \
        return #Name;                                                                          \
    }                                                                                          \
    static const ::flarebox::MotisClass& staticClass() {                                       \
        return ::flarebox::detail::MotisDeclarationReader<Name, Superclass>::makeClass(#Name); \
    }                                                                                          \
    const ::flarebox::MotisClass& classInfo() const override {                                 \
        return Name::staticClass();                                                            \
    }                                                                                          \
    FLAREBOX_EACH(FLAREBOX_PROPERTY, __VA_ARGS__)                                              \
private:                                                                                       \
    template <class, class>                                                                    \
    friend struct ::flarebox::detail::MotisDeclarationReader;                                  \
    using MotisSelf = Name;                                                                    \
    static std::vector<::flarebox::MotisProperty> motisProperties() {                          \
        [[maybe_unused]] static constexpr auto Required = ::flarebox::Presence::Required;      \
        [[maybe_unused]] static constexpr auto Optional = ::flarebox::Presence::Optional;      \
        return {FLAREBOX_EACH(FLAREBOX_PROPERTY_LINE, __VA_ARGS__)};                           \
    }                                                                                          \
    /* So that the class is found by its name before anything of it is used. */                \
    inline static const bool motisIsRegistered_ = (staticClass(), true);                       \
                                                                                               \
public:
