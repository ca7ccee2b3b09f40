#pragma once

#include <Flarebox/C/flarebox.h>
#include <Foundation/MainQueue.h>

#include <exception>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace flarebox::c {

/// Keeps the reason for `flarebox_last_error`, and returns the result.
flarebox_result failed(flarebox_result result, std::string reason) noexcept;

/// Runs the body of a function that C calls, on the main thread only. No exception leaves it.
template <class Body>
flarebox_result guarded(const Body& body) noexcept {
    if (!isMainThread()) return failed(FLAREBOX_WRONG_THREAD, "called from another thread than the main one");
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

/// The objects of one kind that C holds: a handle is the address of one, and is looked up before it is followed.
template <class Object>
class Handles {
public:
    Object* add(std::unique_ptr<Object> object) { return objects_.emplace_back(std::move(object)).get(); }
    Object* find(const Object* handle) const {
        for (const auto& object : objects_) {
            if (object.get() == handle) return object.get();
        }
        return nullptr;
    }
    std::unique_ptr<Object> remove(const Object* handle) {
        for (auto object = objects_.begin(); object != objects_.end(); ++object) {
            if (object->get() != handle) continue;
            std::unique_ptr<Object> removed = std::move(*object);
            objects_.erase(object);
            return removed;
        }
        return nullptr;
    }

private:
    std::vector<std::unique_ptr<Object>> objects_;
};

/// Runs `body` on the object of a handle, which may end inside.
template <class Object, class Body>
flarebox_result with(const Handles<Object>& handles, const Object* handle, const Body& body) noexcept {
    return guarded([&] {
        Object* const object = handles.find(handle);
        if (!object) return failed(FLAREBOX_INVALID_HANDLE, "there is no such handle, or not any more");
        body(*object);
        return FLAREBOX_OK;
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

}  // namespace flarebox::c
