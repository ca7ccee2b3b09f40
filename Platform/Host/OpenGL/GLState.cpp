#include <Host/OpenGL/GLState.h>

#include <algorithm>

namespace flarebox::detail {
namespace {

struct Capability {
    GLenum name;
    GLSince since;
};

constexpr GLSince desktopOnly{GLSince::always, GLSince::never};

/// What keeps pixels from being drawn, or changes their colours, when it is on.
constexpr Capability inTheWay[] = {
    {GL_SCISSOR_TEST, {}},
    {GL_DEPTH_TEST, {}},
    {GL_STENCIL_TEST, {}},
    {GL_CULL_FACE, {}},
    {GL_DITHER, {}},
    {GL_RASTERIZER_DISCARD, {}},
    {GL_SAMPLE_ALPHA_TO_COVERAGE, {}},
    {GL_SAMPLE_COVERAGE, {}},
    {GL_SAMPLE_MASK, {GLSince::always, 31}},
    {GL_SAMPLE_ALPHA_TO_ONE, desktopOnly},
    {GL_COLOR_LOGIC_OP, desktopOnly},
    {GL_POLYGON_SMOOTH, desktopOnly},
    // Of rectangles that are drawn without indices too, in some versions.
    {GL_PRIMITIVE_RESTART, desktopOnly},
    {GL_PRIMITIVE_RESTART_FIXED_INDEX, {43, GLSince::always}},
};

}  // namespace

GLTextureState::GLTextureState(const GLFunctions& gl) : gl_(gl) {
    gl_.GetIntegerv(GL_TEXTURE_BINDING_2D, &texture_);
    gl_.GetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &buffer_);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        gl_.GetIntegerv(parameters[i], &values_[i]);
        gl_.PixelStorei(parameters[i], parameters[i] == GL_UNPACK_ALIGNMENT ? 4 : 0);
    }
    gl_.BindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
}

GLTextureState::~GLTextureState() {
    for (std::size_t i = 0; i < parameters.size(); ++i) gl_.PixelStorei(parameters[i], values_[i]);
    gl_.BindBuffer(GL_PIXEL_UNPACK_BUFFER, static_cast<GLuint>(buffer_));
    gl_.BindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture_));
}

GLDrawState::GLDrawState(const GLFunctions& gl, bool canSwitchEncoding, int width, int height)
    : gl_(gl),
      program_(integer(GL_CURRENT_PROGRAM)),
      vertexArray_(integer(GL_VERTEX_ARRAY_BINDING)),
      arrayBuffer_(integer(GL_ARRAY_BUFFER_BINDING)),
      activeUnit_(integer(GL_ACTIVE_TEXTURE)),
      blending_(blending()) {
    gl_.ActiveTexture(GL_TEXTURE0);
    texture_ = integer(GL_TEXTURE_BINDING_2D);
    sampler_ = integer(GL_SAMPLER_BINDING);
    gl_.BindSampler(0, 0);
    gl_.GetBooleanv(GL_COLOR_WRITEMASK, colorMask_.data());
    gl_.GetFloatv(GL_VIEWPORT, viewport_.data());
    switchOff(canSwitchEncoding);
    keepFirstBufferOnly();
    setBlending({});
    setColorMask({GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE});
    setViewport({0, 0, static_cast<GLfloat>(width), static_cast<GLfloat>(height)});
    if (gl_.PolygonMode) {
        // Two numbers in some versions, of which only the first one counts.
        std::array<GLint, 2> modes{};
        gl_.GetIntegerv(GL_POLYGON_MODE, modes.data());
        polygonMode_ = modes[0];
        gl_.PolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    }
    if (gl_.ClipControl) {
        clipOrigin_ = integer(GL_CLIP_ORIGIN);
        clipDepth_ = integer(GL_CLIP_DEPTH_MODE);
        gl_.ClipControl(GL_LOWER_LEFT, GL_NEGATIVE_ONE_TO_ONE);
    }
}

GLDrawState::~GLDrawState() {
    if (gl_.ClipControl) gl_.ClipControl(static_cast<GLenum>(clipOrigin_), static_cast<GLenum>(clipDepth_));
    if (gl_.PolygonMode) gl_.PolygonMode(GL_FRONT_AND_BACK, static_cast<GLenum>(polygonMode_));
    setViewport(viewport_);
    setColorMask(colorMask_);
    setBlending(blending_);
    if (!drawBuffers_.empty()) gl_.DrawBuffers(static_cast<GLsizei>(drawBuffers_.size()), drawBuffers_.data());
    for (const GLenum capability : switchedOff_) setCapability(capability, true);
    gl_.BindSampler(0, static_cast<GLuint>(sampler_));
    gl_.BindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture_));
    gl_.ActiveTexture(static_cast<GLenum>(activeUnit_));
    gl_.BindVertexArray(static_cast<GLuint>(vertexArray_));
    gl_.BindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(arrayBuffer_));
    // One that the game has deleted while it was in use is gone for good now.
    const auto program = static_cast<GLuint>(program_);
    gl_.UseProgram(program != 0 && gl_.IsProgram(program) ? program : 0);
}

GLint GLDrawState::integer(GLenum name) const {
    GLint value = 0;
    gl_.GetIntegerv(name, &value);
    return value;
}

GLDrawState::Blending GLDrawState::blending() const {
    return {gl_.IsEnabled(GL_BLEND) == GL_TRUE, integer(GL_BLEND_SRC_RGB),   integer(GL_BLEND_DST_RGB),
            integer(GL_BLEND_SRC_ALPHA),        integer(GL_BLEND_DST_ALPHA), integer(GL_BLEND_EQUATION_RGB),
            integer(GL_BLEND_EQUATION_ALPHA)};
}

void GLDrawState::switchOff(bool canSwitchEncoding) {
    const auto off = [this](GLenum capability) {
        if (!gl_.IsEnabled(capability)) return;
        setCapability(capability, false);
        switchedOff_.push_back(capability);
    };
    for (const Capability& capability : inTheWay) {
        if (gl_.has(capability.since)) off(capability.name);
    }
    if (canSwitchEncoding) off(GL_FRAMEBUFFER_SRGB);
    if (gl_.isES) return;
    for (GLint i = 0, count = integer(GL_MAX_CLIP_DISTANCES); i < count; ++i)
        off(GL_CLIP_DISTANCE0 + static_cast<GLenum>(i));
}

void GLDrawState::setCapability(GLenum capability, bool isEnabled) const {
    const bool isOneOfSeveral =
        (capability == GL_BLEND && gl_.Enablei) || (capability == GL_SCISSOR_TEST && gl_.ViewportIndexedf);
    if (isOneOfSeveral)
        isEnabled ? gl_.Enablei(capability, 0) : gl_.Disablei(capability, 0);
    else
        isEnabled ? gl_.Enable(capability) : gl_.Disable(capability);
}

// What a fragment shader does not write is undefined in all the other buffers.
void GLDrawState::keepFirstBufferOnly() {
    std::vector<GLenum> buffers;
    for (GLint i = 0, count = integer(GL_MAX_DRAW_BUFFERS); i < count; ++i)
        buffers.push_back(static_cast<GLenum>(integer(GL_DRAW_BUFFER0 + static_cast<GLenum>(i))));
    while (!buffers.empty() && buffers.back() == GL_NONE) buffers.pop_back();
    if (buffers.size() < 2) return;
    gl_.DrawBuffers(1, buffers.data());
    drawBuffers_ = std::move(buffers);
}

void GLDrawState::setBlending(const Blending& blending) const {
    const auto [isEnabled, sourceColor, targetColor, sourceAlpha, targetAlpha, colorEquation, alphaEquation] = blending;
    const auto name = [](GLint value) { return static_cast<GLenum>(value); };
    setCapability(GL_BLEND, isEnabled);
    if (gl_.BlendFuncSeparatei) {
        gl_.BlendFuncSeparatei(0, name(sourceColor), name(targetColor), name(sourceAlpha), name(targetAlpha));
        gl_.BlendEquationSeparatei(0, name(colorEquation), name(alphaEquation));
    } else {
        gl_.BlendFuncSeparate(name(sourceColor), name(targetColor), name(sourceAlpha), name(targetAlpha));
        gl_.BlendEquationSeparate(name(colorEquation), name(alphaEquation));
    }
}

void GLDrawState::setColorMask(const ColorMask& mask) const {
    if (gl_.ColorMaski)
        gl_.ColorMaski(0, mask[0], mask[1], mask[2], mask[3]);
    else
        gl_.ColorMask(mask[0], mask[1], mask[2], mask[3]);
}

void GLDrawState::setViewport(const Viewport& viewport) const {
    const auto [x, y, width, height] = viewport;
    if (gl_.ViewportIndexedf)
        gl_.ViewportIndexedf(0, x, y, width, height);
    else
        gl_.Viewport(static_cast<GLint>(x), static_cast<GLint>(y), static_cast<GLsizei>(width),
                     static_cast<GLsizei>(height));
}

}  // namespace flarebox::detail
