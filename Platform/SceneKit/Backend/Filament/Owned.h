#pragma once

#include <filament/Engine.h>

#include <memory>

namespace flarebox::detail {

/// Gives an object of the engine's back to it.
struct EngineDeleter {
    filament::Engine* engine = nullptr;
    template <class T>
    void operator()(T* object) const {
        engine->destroy(object);
    }
};

/// Owns an object of the engine's; has to go before the engine.
template <class T>
using Owned = std::unique_ptr<T, EngineDeleter>;

template <class T>
Owned<T> own(filament::Engine& engine, T* object) {
    return Owned<T>(object, EngineDeleter{&engine});
}

}  // namespace flarebox::detail
