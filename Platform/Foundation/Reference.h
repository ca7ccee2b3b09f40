#pragma once

#include <Foundation/Export.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <type_traits>
#include <utility>

namespace flarebox {

class NSObject;

namespace detail {

FLAREBOX_EXPORT void retain(const NSObject* object) noexcept;
FLAREBOX_EXPORT void release(const NSObject* object) noexcept;

/// The shared memory of all weak references to one object. Outlives the object.
class WeakBox;
FLAREBOX_EXPORT WeakBox* weakBox(const NSObject* object);
FLAREBOX_EXPORT void retainBox(WeakBox* box) noexcept;
FLAREBOX_EXPORT void releaseBox(WeakBox* box) noexcept;
/// The object with one reference added, or null once its destruction has begun. Any thread.
FLAREBOX_EXPORT NSObject* lockBox(WeakBox* box) noexcept;
/// The object or null once its destruction has begun. On the thread that gives the last reference back.
FLAREBOX_EXPORT NSObject* peekBox(const WeakBox* box) noexcept;

}  // namespace detail

/// Owning reference to an NSObject; may be null. Copying retains, destroying releases.
/// The count is atomic: references may be handed between threads, one `Ref` variable may not be shared without a lock.
template <class T>
class Ref {
public:
    using Element = T;  ///< what is referred to

    constexpr Ref() noexcept = default;
    constexpr Ref(std::nullptr_t) noexcept {}  ///< null
    /// Shares ownership of an object that is already owned by somebody (never of a stack object).
    explicit Ref(T* object) noexcept : object_(object) { detail::retain(base()); }
    /// One more owner.
    Ref(const Ref& other) noexcept : object_(other.object_) { detail::retain(base()); }
    /// Leaves the other one null.
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    /// Of a more general class; one more owner.
    template <class U>
    requires std::is_convertible_v<U*, T*> Ref(const Ref<U>& other)
    noexcept : object_(other.get()) { detail::retain(base()); }
    /// Of a more general class; leaves the other one null.
    template <class U>
    requires std::is_convertible_v<U*, T*> Ref(Ref<U>&& other)
    noexcept : object_(other.leak()) {}
    ~Ref() { detail::release(base()); }

    /// Gives up what it owned before.
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    /// Takes over the reference that the caller holds, without retaining again.
    static Ref adopt(T* object) noexcept {
        Ref result;
        result.object_ = object;
        return result;
    }
    /// Gives the reference to the caller, who must release it.
    [[nodiscard]] T* leak() noexcept { return std::exchange(object_, nullptr); }

    T* get() const noexcept { return object_; }         ///< borrowed; may be null
    T& operator*() const noexcept { return *object_; }  ///< not of a null reference
    T* operator->() const noexcept { return object_; }  ///< not of a null reference
    /// Whether it is not null.
    explicit operator bool() const noexcept { return object_ != nullptr; }

    friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.object_ == b.object_; }
    friend bool operator==(const Ref& a, std::nullptr_t) noexcept { return a.object_ == nullptr; }

private:
    // A cast in the C manner so that a forward-declared T works where nothing but moving happens.
    const NSObject* base() const noexcept {
        if constexpr (std::is_base_of_v<NSObject, T>)
            return object_;
        else
            return (const NSObject*)object_;
    }

    T* object_ = nullptr;
};

/// Non-owning reference that becomes null when its object is destroyed. Locking is safe from any thread.
template <class T>
class Weak {
public:
    using Element = T;  ///< what is referred to

    constexpr Weak() noexcept = default;
    constexpr Weak(std::nullptr_t) noexcept {}  ///< null
    /// Of an object that is owned by somebody, on a thread where it cannot be destroyed meanwhile; null for null.
    explicit Weak(T* object) : object_(object), box_(object ? detail::weakBox(object) : nullptr) {}
    /// Of what the reference owns, or null.
    template <class U>
    requires std::is_convertible_v<U*, T*> Weak(const Ref<U>& object) : Weak(static_cast<T*>(object.get())) {}
    /// Of the same object, gone or not.
    Weak(const Weak& other) noexcept : object_(other.object_), box_(other.box_) { detail::retainBox(box_); }
    /// Leaves the other one null.
    Weak(Weak&& other) noexcept
        : object_(std::exchange(other.object_, nullptr)), box_(std::exchange(other.box_, nullptr)) {}
    ~Weak() { detail::releaseBox(box_); }

    /// Forgets the former object.
    Weak& operator=(Weak other) noexcept {
        std::swap(object_, other.object_);
        std::swap(box_, other.box_);
        return *this;
    }

    /// An owning reference, or null when the object is gone.
    Ref<T> lock() const noexcept {
        NSObject* object = detail::lockBox(box_);
        return object ? Ref<T>::adopt(object_) : Ref<T>();
    }
    /// The object or null, for use on the thread that owns the object (the main thread for views).
    T* get() const noexcept { return detail::peekBox(box_) ? object_ : nullptr; }
    T& operator*() const noexcept { return *get(); }  ///< not once the object is gone
    T* operator->() const noexcept { return get(); }  ///< not once the object is gone
    /// Whether the object is there; see `get`.
    explicit operator bool() const noexcept { return get() != nullptr; }

private:
    T* object_ = nullptr;
    detail::WeakBox* box_ = nullptr;
};

/// Creates an object and the first reference to it.
template <class T, class... Arguments>
Ref<T> make(Arguments&&... arguments) {
    return Ref<T>::adopt(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace flarebox

/// @cond
template <class T>
struct std::hash<flarebox::Ref<T>> {
    std::size_t operator()(const flarebox::Ref<T>& reference) const noexcept {
        return std::hash<const void*>()(reference.get());
    }
};
/// @endcond
