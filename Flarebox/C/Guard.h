#pragma once

#include <Flarebox/C/flarebox.h>
#include <Foundation/MainQueue.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

namespace flarebox::c {

/// Keeps the reason for `flarebox_last_error`, and returns the result.
flarebox_result failed(flarebox_result result, std::string reason) noexcept;

/// Runs the body of a function that C calls; no exception leaves it.
template <class Body>
flarebox_result withoutExceptions(const Body& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return failed(FLAREBOX_FAILED, "out of memory");
    } catch (const std::exception& exception) {
        return failed(FLAREBOX_FAILED, exception.what());
    } catch (...) {
        return failed(FLAREBOX_FAILED, "an exception of an unknown kind");
    }
}

/// A function of the interface that is under way on the main thread; one inside another is called by a callback.
class Call {
public:
    Call() { ++depth_; }
    ~Call() { --depth_; }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    static bool isNested() { return depth_ > 1; }

private:
    inline static int depth_ = 0;
};

/// The same, on the main thread only.
template <class Body>
flarebox_result guarded(const Body& body) noexcept {
    if (!isMainThread()) return failed(FLAREBOX_WRONG_THREAD, "called from another thread than the main one");
    const Call call;
    return withoutExceptions(body);
}

/// The same for what would take away what the function around a callback still works with.
template <class Body>
flarebox_result guardedOutsideCallbacks(const Body& body) noexcept {
    return guarded([&] { return Call::isNested() ? failed(FLAREBOX_FAILED, "called inside a callback") : body(); });
}

/// The objects of one kind that C holds. A handle is a number in the guise of a pointer: it is looked up, never
/// followed, and never given twice.
template <class Object, class Handle>
class Handles {
public:
    Handle* add(std::unique_ptr<Object> object) {
        auto* const handle = reinterpret_cast<Handle*>(next_);
        next_ += alignment;
        objects_.emplace(handle, std::move(object));
        return handle;
    }
    Object* find(Handle* handle) const {
        const auto found = objects_.find(handle);
        return found == objects_.end() ? nullptr : found->second.get();
    }
    /// Null when there is none.
    std::unique_ptr<Object> remove(Handle* handle) {
        auto node = objects_.extract(handle);
        return node ? std::move(node.mapped()) : nullptr;
    }

private:
    /// What a pointer would have.
    static constexpr std::uintptr_t alignment = 16;
    std::map<Handle*, std::unique_ptr<Object>> objects_;
    std::uintptr_t next_ = alignment;
};

/// Runs `body`, which tells how it went if it can go wrong, on something.
template <class Body, class Object>
flarebox_result resultOf(const Body& body, Object& object) {
    if constexpr (std::is_void_v<decltype(body(object))>) {
        body(object);
        return FLAREBOX_OK;
    } else {
        return body(object);
    }
}

/// Runs `body` on the object of a handle, which may end inside.
template <class Object, class Handle, class Body>
flarebox_result with(const Handles<Object, Handle>& handles, Handle* handle, const Body& body) noexcept {
    return guarded([&] {
        Object* const object = handles.find(handle);
        if (!object) return failed(FLAREBOX_INVALID_HANDLE, "there is no such handle, or not any more");
        return resultOf(body, *object);
    });
}

/// A struct of C as this version knows it: what an older caller did not have stays as in `Struct()`, what a newer one
/// has beyond is left out. False for null and for one that is shorter than the first version's.
template <class Struct>
bool copyStruct(const Struct* from, std::size_t sizeOfFirstVersion, Struct& to) {
    if (!from || from->struct_size < sizeOfFirstVersion) {
        failed(FLAREBOX_INVALID_ARGUMENT, "the struct is null, or its struct_size is none");
        return false;
    }
    const auto* const bytes = reinterpret_cast<const unsigned char*>(from);
    std::copy_n(bytes, std::min(from->struct_size, sizeof to), reinterpret_cast<unsigned char*>(&to));
    return true;
}

/// The texts of a list of C. False where the list or one of them is null, or a text is empty.
bool copyTexts(const char* const* from, std::size_t count, std::vector<std::string>& to);

}  // namespace flarebox::c
