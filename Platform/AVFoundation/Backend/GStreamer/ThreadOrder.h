#pragma once

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace flarebox {

// The library starts, stops and locks its threads in code that the thread sanitizer cannot see into. These tell it what
// holds nevertheless: everything before a `handToLibrary` is visible after the next `takeFromLibrary` of the same
// object.

inline void handToLibrary([[maybe_unused]] void* object) {
#ifdef __SANITIZE_THREAD__
    __tsan_release(object);
#endif
}

inline void takeFromLibrary([[maybe_unused]] void* object) {
#ifdef __SANITIZE_THREAD__
    __tsan_acquire(object);
#endif
}

}  // namespace flarebox
