#pragma once

#include <Foundation/Class.h>
#include <Foundation/Export.h>
#include <Foundation/Reference.h>

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace flarebox {

class NSObject;
class Value;

/// What a key-value observer is told: bit 1 delivers the new value, bit 2 the old one.
enum NSKeyValueObservingOptions : std::uint32_t {
    NSKeyValueObservingOptionNew = 1,
    NSKeyValueObservingOptionOld = 2,
};

/// The change handed to an observer. Both values are absent unless asked for.
struct NSKeyValueChange;

/// The root of everything that is shared by reference: records, views, services.
/// Objects are created with `make<T>()`, owned through `Ref<T>` and observed through `Weak<T>`.
class FLAREBOX_EXPORT NSObject {
public:
    NSObject() = default;
    virtual ~NSObject();
    NSObject(const NSObject&) = delete;
    NSObject& operator=(const NSObject&) = delete;

    static const ClassInfo& staticClass();
    /// The class of this very object.
    virtual const ClassInfo& classInfo() const { return staticClass(); }
    bool isKindOfClass(const ClassInfo& ancestor) const { return classInfo().isSubclassOf(ancestor); }

    /// Text for people. The default is the class name with the object's address.
    virtual std::string description() const;
    /// Equality by content where a class defines one, by identity otherwise. Equal objects have equal hashes.
    virtual bool isEqual(const NSObject& other) const { return this == &other; }
    virtual std::size_t hash() const { return reinterpret_cast<std::size_t>(this) >> 4; }

    /// Reads a property by name: absent when it has no value or there is no such property.
    virtual Value valueForKey(std::string_view key) const;
    /// Writes a property by name; a name without a property is ignored.
    virtual void setValue(const Value& value, std::string_view key);

    /// Whether the class or a superclass lists an action of that name.
    bool respondsToSelector(std::string_view selector) const;
    /// Performs a listed action now; false when there is none of that name.
    bool performSelector(std::string_view selector, NSObject* argument = nullptr);
    /// Performs a listed action on the main queue after `delay` seconds (0: next turn). The object is kept alive until
    /// then. Main thread.
    void performSelectorAfterDelay(std::string_view selector, const Ref<NSObject>& argument, double delay);
    /// Cancels what `performSelectorAfterDelay` of this target, name and argument has not yet performed.
    static void cancelPreviousPerformRequests(NSObject& target, std::string_view selector, NSObject* argument);

    /// Registers for changes of a property. The registration ends with `removeObserver`, or by itself when either
    /// object is destroyed. Main thread.
    void addObserver(NSObject& observer, std::string_view keyPath, std::uint32_t options, void* context = nullptr);
    void removeObserver(NSObject& observer, std::string_view keyPath);
    /// Called on an observer after a change.
    virtual void observeValueForKeyPath(std::string_view keyPath, NSObject& object, const NSKeyValueChange& change,
                                        void* context);

protected:
    /// For setters of observable properties.
    void willChangeValueForKey(std::string_view key);
    void didChangeValueForKey(std::string_view key);
    /// For operations that call out: keeps the object alive. Null during its destruction, when there is nothing to
    /// keep.
    Ref<NSObject> retained() const;
    /// Destroys the object, on the thread that gave the last reference back.
    virtual void dealloc() const { delete this; }

private:
    friend void detail::retain(const NSObject*) noexcept;
    friend void detail::release(const NSObject*) noexcept;
    friend detail::WeakBox* detail::weakBox(const NSObject*);
    friend NSObject* detail::lockBox(detail::WeakBox*) noexcept;

    mutable std::atomic<std::uint32_t> references_{1};
    /// Set once somebody observes or is weakly referenced, so that objects that are not pay nothing.
    mutable std::atomic<bool> hasObservers_{false};
    mutable std::atomic<detail::WeakBox*> weakBox_{nullptr};
};

/// The object as a T, or null when it is null or of another class.
template <class T>
T* objectCast(NSObject* object) {
    return dynamic_cast<T*>(object);
}

template <auto Member>
constexpr Action action(std::string_view name) {
    return {name, [](NSObject& object, NSObject* argument) {
                auto invoke = [&]<class C>(void (C::*member)()) { (static_cast<C&>(object).*member)(); };
                auto invokeWith = [&]<class C, class A>(void (C::*member)(A*)) {
                    (static_cast<C&>(object).*member)(objectCast<A>(argument));
                };
                if constexpr (requires { invoke(Member); })
                    invoke(Member);
                else
                    invokeWith(Member);
            }};
}

namespace detail {
template <class M>
struct MemberPointer;
template <class C, class Field>
struct MemberPointer<Field C::*> {
    using Owner = C;
    using Target = typename Field::Element;
};
}  // namespace detail

template <auto Member>
constexpr Outlet outlet(std::string_view name, Outlet::Source source) {
    using Owner = typename detail::MemberPointer<decltype(Member)>::Owner;
    using Target = typename detail::MemberPointer<decltype(Member)>::Target;
    return {name, source,
            [](NSObject& owner, NSObject* value) {
                auto* target = objectCast<Target>(value);
                if (value && !target) return false;
                using Field = std::remove_reference_t<decltype(static_cast<Owner&>(owner).*Member)>;
                static_cast<Owner&>(owner).*Member = target ? Field(target) : Field();
                return true;
            },
            [](const NSObject& owner) -> NSObject* { return (static_cast<const Owner&>(owner).*Member).get(); }};
}

}  // namespace flarebox
