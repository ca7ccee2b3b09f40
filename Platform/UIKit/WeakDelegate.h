#pragma once

#include <Foundation/NSObject.h>

namespace flarebox {

/// Somebody who is told things through an abstract class `T` and is not owned. When the delegate is an NSObject the
/// field becomes null with its destruction; any other delegate has to be taken back before it goes.
template <class T>
class WeakDelegate {
public:
    WeakDelegate() = default;
    WeakDelegate(T* delegate) : delegate_(delegate) {
        auto* object = dynamic_cast<NSObject*>(delegate);
        isGuarded_ = object != nullptr;
        guard_ = Weak<NSObject>(object);
    }

    T* get() const { return isGuarded_ && !guard_ ? nullptr : delegate_; }
    T* operator->() const { return get(); }
    explicit operator bool() const { return get() != nullptr; }

private:
    T* delegate_ = nullptr;
    Weak<NSObject> guard_;
    bool isGuarded_ = false;
};

}  // namespace flarebox
