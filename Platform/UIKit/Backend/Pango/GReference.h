#pragma once

#include <glib-object.h>

#include <memory>

namespace flarebox::text {

struct GObjectRelease {
    void operator()(void* object) const { g_object_unref(object); }
};
/// Owns one reference to an object of the library.
template <class T>
using GReference = std::unique_ptr<T, GObjectRelease>;

}  // namespace flarebox::text
