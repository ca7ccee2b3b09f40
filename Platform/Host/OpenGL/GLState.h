#pragma once

#include <Host/OpenGL/GLFunctions.h>

#include <array>
#include <vector>

namespace flarebox::detail {

/// While it lives a texture of ours may be bound and filled: at the unit that happens to be active, from memory of
/// ours. Then everything is the game's again.
class GLTextureState {
public:
    explicit GLTextureState(const GLFunctions& gl);
    ~GLTextureState();
    GLTextureState(const GLTextureState&) = delete;
    GLTextureState& operator=(const GLTextureState&) = delete;

private:
    static constexpr std::array<GLenum, 4> parameters = {GL_UNPACK_ALIGNMENT, GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS,
                                                         GL_UNPACK_SKIP_PIXELS};
    const GLFunctions& gl_;
    GLint texture_ = 0, buffer_ = 0;
    std::array<GLint, parameters.size()> values_{};
};

/// While it lives, rectangles are drawn over the whole target with premultiplied blending, and nothing that the game
/// has set gets in the way. Then everything is the game's again.
///
/// OpenGL hands out the state of the first colour buffer and the first viewport where there are several of them. Where
/// the others can be told apart, they are left alone.
class GLDrawState {
public:
    /// The size of the target in pixels.
    GLDrawState(const GLFunctions& gl, bool canSwitchEncoding, int width, int height);
    ~GLDrawState();
    GLDrawState(const GLDrawState&) = delete;
    GLDrawState& operator=(const GLDrawState&) = delete;

private:
    struct Blending {
        bool isEnabled = true;
        GLint sourceColor = GL_ONE, targetColor = GL_ONE_MINUS_SRC_ALPHA;
        GLint sourceAlpha = GL_ONE, targetAlpha = GL_ONE_MINUS_SRC_ALPHA;
        GLint colorEquation = GL_FUNC_ADD, alphaEquation = GL_FUNC_ADD;
    };
    using ColorMask = std::array<GLboolean, 4>;
    using Viewport = std::array<GLfloat, 4>;

    GLint integer(GLenum name) const;
    Blending blending() const;
    void switchOff(bool canSwitchEncoding);
    void setCapability(GLenum capability, bool isEnabled) const;
    void keepFirstBufferOnly();
    void setBlending(const Blending& blending) const;
    void setColorMask(const ColorMask& mask) const;
    void setViewport(const Viewport& viewport) const;

    const GLFunctions& gl_;
    GLint program_ = 0, vertexArray_ = 0, arrayBuffer_ = 0, activeUnit_ = 0, texture_ = 0, sampler_ = 0;
    Blending blending_;
    ColorMask colorMask_{};
    Viewport viewport_{};
    GLint polygonMode_ = 0, clipOrigin_ = 0, clipDepth_ = 0;
    /// What was on and has been switched off.
    std::vector<GLenum> switchedOff_;
    /// Empty unless the game draws into several buffers at once.
    std::vector<GLenum> drawBuffers_;
};

}  // namespace flarebox::detail
