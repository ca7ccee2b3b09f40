#define EGL_NO_X11
#include <SceneKit/Backend/Filament/SurfacelessPlatform.h>

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstring>

namespace flarebox::detail {
namespace {

bool lists(const char* extensions, const char* name) {
    const std::size_t length = std::strlen(name);
    for (const char* at = extensions; at && (at = std::strstr(at, name)); at += length) {
        if ((at == extensions || at[-1] == ' ') && (at[length] == ' ' || at[length] == '\0')) return true;
    }
    return false;
}

EGLDisplay surfacelessDisplay() {
    // Asking for a platform that this EGL does not know is an error that some implementations do not survive.
    if (!lists(eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS), "EGL_MESA_platform_surfaceless")) return EGL_NO_DISPLAY;
    return eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
}

}  // namespace

filament::backend::Driver* SurfacelessPlatform::createDriver(void* sharedContext) noexcept {
    failure_ = createContext();
    if (*failure_) return nullptr;
    return createDefaultDriver(this, sharedContext);
}

const char* SurfacelessPlatform::createContext() noexcept {
    display_ = surfacelessDisplay();
    if (!display_) return "there is no display without a window";
    if (!eglInitialize(display_, nullptr, nullptr)) return "there is no graphics driver";
    if (!eglBindAPI(EGL_OPENGL_API)) return "there is no OpenGL";
    if (!lists(eglQueryString(display_, EGL_EXTENSIONS), "EGL_KHR_surfaceless_context"))
        return "the graphics driver draws to windows only";

    constexpr EGLint wanted[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_SURFACE_TYPE, 0, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(display_, wanted, &config, 1, &count) || count < 1) return "there is no OpenGL";
    constexpr EGLint version[] = {
        EGL_CONTEXT_MAJOR_VERSION,           4,       EGL_CONTEXT_MINOR_VERSION, 1, EGL_CONTEXT_OPENGL_PROFILE_MASK,
        EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT, EGL_NONE};
    context_ = eglCreateContext(display_, config, EGL_NO_CONTEXT, version);
    if (!context_) return "the graphics driver is older than OpenGL 4.1";
    if (eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_)) return "";
    eglDestroyContext(display_, context_);
    context_ = nullptr;
    return "the graphics driver failed";
}

void SurfacelessPlatform::terminate() noexcept {
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(display_, context_);
    eglReleaseThread();
    // The display is the process's: the host may be using it.
}

SurfacelessPlatform::SwapChain* SurfacelessPlatform::createSwapChain(void*, std::uint64_t&) noexcept {
    return &nowhere_;
}

SurfacelessPlatform::SwapChain* SurfacelessPlatform::createSwapChain(std::uint32_t, std::uint32_t,
                                                                     std::uint64_t&) noexcept {
    return &nowhere_;
}

void SurfacelessPlatform::makeCurrent(SwapChain*, SwapChain*) noexcept {
    // Current since it was made, and this thread is the driver's alone.
}

filament::backend::FenceStatus SurfacelessPlatform::waitFence(Fence*, std::uint64_t) noexcept {
    return filament::backend::FenceStatus::ERROR;
}

}  // namespace flarebox::detail
