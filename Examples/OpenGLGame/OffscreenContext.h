#pragma once

#include <string>

namespace flarebox::examples {

/// An OpenGL context without window and display, current on the thread that made it until it goes. It has no
/// framebuffer: what is drawn goes to one that its user makes.
class OffscreenContext {
public:
    enum class Kind { Desktop, ES };
    /// OpenGL 3.3 core or OpenGL ES 3.0, or later versions that do the same.
    explicit OffscreenContext(Kind kind);
    ~OffscreenContext();
    OffscreenContext(const OffscreenContext&) = delete;
    OffscreenContext& operator=(const OffscreenContext&) = delete;

    /// Why there is none; empty when there is one.
    const std::string& failure() const { return failure_; }
    /// The address of an OpenGL function, null for one that is not known.
    static void* resolve(const char* name);

private:
    const char* make(Kind kind);

    // EGLDisplay and EGLContext.
    void* display_ = nullptr;
    void* context_ = nullptr;
    std::string failure_;
};

}  // namespace flarebox::examples
