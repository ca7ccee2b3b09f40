#pragma once

#include <Flarebox/C/flarebox.h>

#include <cstdint>
#include <functional>

namespace flarebox::testing {

/// What a renderer in C works with: it counts its textures, and draws nothing.
struct Drawing {
    int textures = 0;
    std::function<void(const flarebox_quad&)> inQuad;
};

/// The drawing outlives the host.
inline flarebox_renderer rendererOf(Drawing& drawing) {
    flarebox_renderer made = FLAREBOX_RENDERER;
    made.context = &drawing;
    made.create_texture = [](void* context, std::int32_t, std::int32_t) {
        return static_cast<std::uint32_t>(++static_cast<Drawing*>(context)->textures);
    };
    made.update_texture = [](void*, std::uint32_t, auto...) {};
    made.destroy_texture = [](void* context, std::uint32_t) { --static_cast<Drawing*>(context)->textures; };
    made.draw_quad = [](void* context, const flarebox_quad* quad) {
        if (const auto& inQuad = static_cast<Drawing*>(context)->inQuad) inQuad(*quad);
    };
    return made;
}

}  // namespace flarebox::testing
