#pragma once

#include <SceneKit/SceneEngine.h>

#include <cstdio>
#include <cstdlib>

namespace flarebox::testing {

// Without the renderer there is nothing that these tests could look at; with it, not to draw is a fault.
#ifdef FLAREBOX_HAS_3D
inline constexpr bool canDraw = true;
#else
inline constexpr bool canDraw = false;
#endif

/// One engine for all tests of the process: making one takes long.
inline detail::SceneEngine& sharedEngine() {
    static std::string reason;
    static const auto shared = detail::makeSceneEngine(reason);
    if (!shared) {
        std::fprintf(stderr, "%s\n", reason.c_str());
        std::abort();
    }
    return *shared;
}

}  // namespace flarebox::testing
