#pragma once

#include <Foundation/Export.h>
#include <Foundation/Reference.h>

#include <atomic>
#include <span>
#include <string_view>

namespace flarebox {

class ClassInfo;
class NSObject;
class Value;

namespace detail {
struct MemberIndex;
}

/// A class as a value; null means "no class".
using Class = const ClassInfo*;

/// A property that can be read and written by name.
struct Property {
    std::string_view name;
    /// Declared type in the platform's encoding: `T@"NSString"`, `T@` (any object), or `T` and a scalar code as in
    /// `Tq`, `TB`, `Td`.
    std::string_view typeAttribute;
    Value (*get)(const NSObject& object);
    void (*set)(NSObject& object, const Value& value);
};

/// An operation that can be performed by name: the target of a button, a gesture, a timer or a notification.
/// The argument is the sender (or timer, or notification) and may be null.
struct Action {
    std::string_view name;
    void (*perform)(NSObject& object, NSObject* argument);
};

/// A field that holds another object and can be bound and read by name.
struct Outlet {
    enum class Source : std::uint8_t {
        LayoutFile,  ///< must be bound by the layout file of the class
        Code,        ///< set by the class itself; listed so that tools can find it
    };
    std::string_view name;
    Source source;
    /// Binds the field; false when the object is of the wrong class.
    bool (*set)(NSObject& owner, NSObject* value);
    /// The object held, or null.
    NSObject* (*get)(const NSObject& owner);
};

/// What is known about a class at run time: its name, superclass, how to make an instance, and its tables of names.
/// Instances are immutable, live as long as the process, and may be read on any thread.
/// Creating one registers the name, so that `classFromName` finds it.
class FLAREBOX_EXPORT ClassInfo {
public:
    using Factory = Ref<NSObject> (*)();
    struct Tables {
        std::span<const Property> properties = {};
        std::span<const Action> actions = {};
        std::span<const Outlet> outlets = {};
    };

    /// `name` and the tables must outlive the process (string literals, static arrays). `superclass` is null for the
    /// root only; `factory` is null for classes that cannot be made by name.
    ClassInfo(std::string_view name, Class superclass, Factory factory);
    ClassInfo(std::string_view name, Class superclass, Factory factory, Tables tables);
    virtual ~ClassInfo();
    ClassInfo(const ClassInfo&) = delete;
    ClassInfo& operator=(const ClassInfo&) = delete;

    std::string_view name() const { return name_; }
    Class superclass() const { return superclass_; }
    /// True for `ancestor` itself and every class below it.
    bool isSubclassOf(const ClassInfo& ancestor) const;
    /// A default-constructed instance, or null for a class that cannot be made by name.
    Ref<NSObject> create() const;

    /// The class's own tables, without those of its superclasses.
    const Tables& tables() const { return tables_; }
    /// The property, action or outlet of that name, the class's own or inherited; null when there is none.
    const Property* property(std::string_view name) const;
    const Action* action(std::string_view name) const;
    const Outlet* outlet(std::string_view name) const;

private:
    const detail::MemberIndex& members() const;

    std::string_view name_;
    Class superclass_;
    Factory factory_;
    Tables tables_;
    /// Own and inherited members by name, built when first asked for: the tables may be initialised after the class.
    mutable std::atomic<const detail::MemberIndex*> members_{nullptr};
};

/// The registered class of that name, or null. Any thread.
FLAREBOX_EXPORT Class classFromName(std::string_view name);

/// For the `factory` of a ClassInfo.
template <class T>
Ref<NSObject> createObject() {
    return make<T>();
}

/// Table entry for a member function without arguments, or with one that is an object pointer of any class (null when
/// the sender is of another class).
template <auto Member>
constexpr Action action(std::string_view name);

/// Table entry for a data member of type `Weak<T>` or `Ref<T>`.
template <auto Member>
constexpr Outlet outlet(std::string_view name, Outlet::Source source = Outlet::Source::LayoutFile);

/// Goes first into the body of every class that is known at run time; its `staticClass` is defined in the source file.
#define FLAREBOX_CLASS(Name)                                  \
public:                                                       \
    static const ::flarebox::ClassInfo& staticClass();        \
    const ::flarebox::ClassInfo& classInfo() const override { \
        return Name::staticClass();                           \
    }                                                         \
                                                              \
private:

}  // namespace flarebox
