#include <Foundation/NSKeyValueObserving.h>
#include <Foundation/NSObject.h>
#include <Foundation/Value.h>

#include <cstdio>
#include <mutex>

namespace flarebox {
namespace detail {

/// Counted by every weak reference and by the object itself. The lock keeps the object's memory in place while
/// somebody tries to add a reference to it.
class WeakBox {
public:
    explicit WeakBox(NSObject* object) : object_(object) {}

    void retain() noexcept { boxReferences_.fetch_add(1, std::memory_order_relaxed); }
    void release() noexcept {
        if (boxReferences_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }
    void forgetObject() noexcept {
        std::lock_guard lock(mutex_);
        object_.store(nullptr, std::memory_order_release);
    }
    NSObject* object() const noexcept { return object_.load(std::memory_order_acquire); }
    template <class Retain>
    NSObject* lockObject(Retain retainUnlessDying) noexcept {
        std::lock_guard lock(mutex_);
        NSObject* const held = object();
        return held && retainUnlessDying(held) ? held : nullptr;
    }

private:
    std::atomic<std::uint32_t> boxReferences_{1};
    std::mutex mutex_;
    std::atomic<NSObject*> object_;
};

namespace {

/// Adds a reference unless the last one is gone already.
bool retainUnlessZero(std::atomic<std::uint32_t>& references) noexcept {
    std::uint32_t count = references.load(std::memory_order_relaxed);
    while (count != 0) {
        if (references.compare_exchange_weak(count, count + 1, std::memory_order_acquire)) return true;
    }
    return false;
}

}  // namespace

void retain(const NSObject* object) noexcept {
    if (object) object->references_.fetch_add(1, std::memory_order_relaxed);
}

void release(const NSObject* object) noexcept {
    if (!object || object->references_.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    // Weak references must fail from here on, before any destructor of a subclass has run.
    if (WeakBox* box = object->weakBox_.load(std::memory_order_acquire)) box->forgetObject();
    object->dealloc();
}

WeakBox* weakBox(const NSObject* object) {
    WeakBox* box = object->weakBox_.load(std::memory_order_acquire);
    if (!box) {
        const bool isDying = object->references_.load(std::memory_order_relaxed) == 0;
        auto* fresh = new WeakBox(isDying ? nullptr : const_cast<NSObject*>(object));
        if (object->weakBox_.compare_exchange_strong(box, fresh, std::memory_order_acq_rel))
            box = fresh;
        else
            fresh->release();
    }
    box->retain();
    return box;
}

void retainBox(WeakBox* box) noexcept {
    if (box) box->retain();
}

void releaseBox(WeakBox* box) noexcept {
    if (box) box->release();
}

NSObject* peekBox(const WeakBox* box) noexcept {
    return box ? box->object() : nullptr;
}

NSObject* lockBox(WeakBox* box) noexcept {
    if (!box) return nullptr;
    return box->lockObject([](NSObject* object) { return retainUnlessZero(object->references_); });
}

}  // namespace detail

NSObject::~NSObject() {
    if (hasObservers_.load(std::memory_order_acquire)) detail::forgetObservers(this);
    if (detail::WeakBox* box = weakBox_.load(std::memory_order_acquire)) {
        box->forgetObject();
        box->release();
    }
}

const ClassInfo& NSObject::staticClass() {
    static const ClassInfo info("NSObject", nullptr, createObject<NSObject>);
    return info;
}

std::string NSObject::description() const {
    char address[2 + 2 * sizeof(void*) + 1];
    std::snprintf(address, sizeof address, "0x%zx", reinterpret_cast<std::size_t>(this));
    return "<" + std::string(classInfo().name()) + ": " + address + ">";
}

Value NSObject::valueForKey(std::string_view key) const {
    const Property* property = classInfo().property(key);
    return property && property->get ? property->get(*this) : Value();
}

void NSObject::setValue(const Value& value, std::string_view key) {
    const Property* property = classInfo().property(key);
    if (property && property->set) property->set(*this, value);
}

bool NSObject::respondsToSelector(std::string_view selector) const {
    return classInfo().action(selector) != nullptr;
}

bool NSObject::performSelector(std::string_view selector, NSObject* argument) {
    const Action* action = classInfo().action(selector);
    if (!action) return false;
    // The action may let go of the last reference to this very object; during its destruction there is none to keep.
    const Ref<NSObject> self = retained();
    action->perform(*this, argument);
    return true;
}

Ref<NSObject> NSObject::retained() const {
    return detail::retainUnlessZero(references_) ? Ref<NSObject>::adopt(const_cast<NSObject*>(this)) : nullptr;
}

}  // namespace flarebox
