#define EGL_NO_X11
#include "OffscreenContext.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

namespace flarebox::examples {
namespace {

bool lists(const char* extensions, const std::string& name) {
    if (!extensions) return false;
    const std::string padded = " " + std::string(extensions) + " ";
    return padded.find(" " + name + " ") != std::string::npos;
}

}  // namespace

OffscreenContext::OffscreenContext(Kind kind) : failure_(make(kind)) {}

const char* OffscreenContext::make(Kind kind) {
    if (!lists(eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS), "EGL_MESA_platform_surfaceless"))
        return "there is no display without a window";
    display_ = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (!display_ || !eglInitialize(display_, nullptr, nullptr)) return "there is no graphics driver";
    const bool isES = kind == Kind::ES;
    if (!eglBindAPI(isES ? EGL_OPENGL_ES_API : EGL_OPENGL_API)) return "there is no OpenGL of that kind";
    const EGLint wanted[] = {EGL_RENDERABLE_TYPE, isES ? EGL_OPENGL_ES3_BIT : EGL_OPENGL_BIT, EGL_SURFACE_TYPE, 0,
                             EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(display_, wanted, &config, 1, &count) || count < 1) return "there is no OpenGL of that kind";
    constexpr EGLint desktop[] = {
        EGL_CONTEXT_MAJOR_VERSION,           3,       EGL_CONTEXT_MINOR_VERSION, 3, EGL_CONTEXT_OPENGL_PROFILE_MASK,
        EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT, EGL_NONE};
    constexpr EGLint es[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 0, EGL_NONE};
    context_ = eglCreateContext(display_, config, EGL_NO_CONTEXT, isES ? es : desktop);
    if (!context_) return "the graphics driver is too old";
    if (!eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_)) return "the graphics driver failed";
    return "";
}

OffscreenContext::~OffscreenContext() {
    if (!context_) return;
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(display_, context_);
    // The display is the process's: something else may be using it.
}

void* OffscreenContext::resolve(const char* name) {
    return reinterpret_cast<void*>(eglGetProcAddress(name));
}

}  // namespace flarebox::examples
