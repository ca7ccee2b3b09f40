#include <Foundation/LogSink.h>
#include <Host/OpenGL/GLFunctions.h>

#include <cstdlib>
#include <string>

namespace flarebox::detail {
namespace {

constexpr int oldestDesktop = 33, oldestES = 30;

void report(const std::string& reason) {
    LogSink::write(LogLevelError, "OpenGL: " + reason + "; the panel is not shown");
}

/// "4.5 (Core Profile) Mesa", "OpenGL ES 3.2 Mesa": the number, and which of the two it is.
void readVersion(std::string_view text, GLFunctions& gl) {
    gl.isES = text.starts_with("OpenGL ES");
    const std::size_t digit = text.find_first_of("0123456789");
    if (digit == std::string_view::npos) return;
    char* dot = nullptr;
    const long major = std::strtol(text.data() + digit, &dot, 10);
    const long minor = *dot == '.' ? std::strtol(dot + 1, nullptr, 10) : 0;
    gl.version = static_cast<int>(major * 10 + minor);
}

/// The first function that the version has and the context lacks, or null.
const char* loadAll(const OpenGLResolver& resolve, GLFunctions& gl) {
    [[maybe_unused]] constexpr int always = GLSince::always, never = GLSince::never;
    const char* missing = nullptr;
#define FLAREBOX_GL_LOAD(name, capitals, desktop, es)                           \
    if (gl.has({desktop, es})) {                                                \
        gl.name = reinterpret_cast<PFNGL##capitals##PROC>(resolve("gl" #name)); \
        if (!gl.name && !missing) missing = "gl" #name;                         \
    }
    FLAREBOX_GL_FUNCTIONS(FLAREBOX_GL_LOAD)
#undef FLAREBOX_GL_LOAD
    return missing;
}

}  // namespace

std::optional<GLFunctions> GLFunctions::load(const OpenGLResolver& resolve) {
    GLFunctions gl;
    if (resolve) gl.GetString = reinterpret_cast<PFNGLGETSTRINGPROC>(resolve("glGetString"));
    if (!gl.GetString) {
        report("the host resolves no functions, not even glGetString");
        return std::nullopt;
    }
    const auto* version = reinterpret_cast<const char*>(gl.GetString(GL_VERSION));
    if (!version) {
        report("no context is current on this thread");
        return std::nullopt;
    }
    readVersion(version, gl);
    if (gl.version < (gl.isES ? oldestES : oldestDesktop)) {
        report("the context is \"" + std::string(version) + "\", and OpenGL 3.3 or OpenGL ES 3.0 is needed");
        return std::nullopt;
    }
    if (const char* missing = loadAll(resolve, gl)) {
        report("the host does not resolve " + std::string(missing) + ", which \"" + version + "\" has");
        return std::nullopt;
    }
    return gl;
}

bool GLFunctions::hasExtension(std::string_view name) const {
    GLint count = 0;
    GetIntegerv(GL_NUM_EXTENSIONS, &count);
    for (GLint i = 0; i < count; ++i) {
        const auto* extension = reinterpret_cast<const char*>(GetStringi(GL_EXTENSIONS, static_cast<GLuint>(i)));
        if (extension && name == extension) return true;
    }
    return false;
}

}  // namespace flarebox::detail
