#pragma once

#include <functional>

namespace flarebox {

/// Answers the address of an OpenGL function by its name ("glEnable"), null where there is none. It has to know every
/// function of the context's version, the oldest ones too, as SDL_GL_GetProcAddress and eglGetProcAddress do.
using OpenGLResolver = std::function<void*(const char* name)>;

}  // namespace flarebox
