// Whatever a game has set in its context is set after the panel was drawn, and does not show in the panel.

#include "OpenGLTesting.h"

#include <map>

namespace flarebox::testing {
namespace {

/// What can be asked by a name, since which version of desktop OpenGL and OpenGL ES it exists; 0: it does not.
struct Getter {
    const char* label;
    GLenum name;
    int desktop, es;
};

#define GETTER(name, desktop, es) \
    { #name, name, desktop, es }
constexpr Getter getters[] = {
    GETTER(GL_CURRENT_PROGRAM, 33, 30),
    GETTER(GL_VERTEX_ARRAY_BINDING, 33, 30),
    GETTER(GL_ARRAY_BUFFER_BINDING, 33, 30),
    GETTER(GL_ELEMENT_ARRAY_BUFFER_BINDING, 33, 30),
    GETTER(GL_PIXEL_UNPACK_BUFFER_BINDING, 33, 30),
    GETTER(GL_PIXEL_PACK_BUFFER_BINDING, 33, 30),
    GETTER(GL_UNIFORM_BUFFER_BINDING, 33, 30),
    GETTER(GL_COPY_READ_BUFFER_BINDING, 33, 30),
    GETTER(GL_DRAW_FRAMEBUFFER_BINDING, 33, 30),
    GETTER(GL_READ_FRAMEBUFFER_BINDING, 33, 30),
    GETTER(GL_RENDERBUFFER_BINDING, 33, 30),
    GETTER(GL_DRAW_BUFFER0, 33, 30),
    GETTER(GL_DRAW_BUFFER1, 33, 30),
    GETTER(GL_READ_BUFFER, 33, 30),
    GETTER(GL_ACTIVE_TEXTURE, 33, 30),
    GETTER(GL_BLEND, 33, 30),
    GETTER(GL_BLEND_SRC_RGB, 33, 30),
    GETTER(GL_BLEND_DST_RGB, 33, 30),
    GETTER(GL_BLEND_SRC_ALPHA, 33, 30),
    GETTER(GL_BLEND_DST_ALPHA, 33, 30),
    GETTER(GL_BLEND_EQUATION_RGB, 33, 30),
    GETTER(GL_BLEND_EQUATION_ALPHA, 33, 30),
    GETTER(GL_BLEND_COLOR, 33, 30),
    GETTER(GL_SCISSOR_TEST, 33, 30),
    GETTER(GL_SCISSOR_BOX, 33, 30),
    GETTER(GL_VIEWPORT, 33, 30),
    GETTER(GL_DEPTH_TEST, 33, 30),
    GETTER(GL_DEPTH_WRITEMASK, 33, 30),
    GETTER(GL_DEPTH_FUNC, 33, 30),
    GETTER(GL_DEPTH_RANGE, 33, 30),
    GETTER(GL_STENCIL_TEST, 33, 30),
    GETTER(GL_STENCIL_FUNC, 33, 30),
    GETTER(GL_STENCIL_REF, 33, 30),
    GETTER(GL_STENCIL_WRITEMASK, 33, 30),
    GETTER(GL_STENCIL_BACK_FAIL, 33, 30),
    GETTER(GL_CULL_FACE, 33, 30),
    GETTER(GL_CULL_FACE_MODE, 33, 30),
    GETTER(GL_FRONT_FACE, 33, 30),
    GETTER(GL_COLOR_WRITEMASK, 33, 30),
    GETTER(GL_COLOR_CLEAR_VALUE, 33, 30),
    GETTER(GL_DITHER, 33, 30),
    GETTER(GL_RASTERIZER_DISCARD, 33, 30),
    GETTER(GL_SAMPLE_ALPHA_TO_COVERAGE, 33, 30),
    GETTER(GL_SAMPLE_COVERAGE, 33, 30),
    GETTER(GL_SAMPLE_COVERAGE_VALUE, 33, 30),
    GETTER(GL_SAMPLE_MASK, 33, 31),
    GETTER(GL_POLYGON_OFFSET_FILL, 33, 30),
    GETTER(GL_PRIMITIVE_RESTART_FIXED_INDEX, 43, 30),
    GETTER(GL_LINE_WIDTH, 33, 30),
    GETTER(GL_UNPACK_ALIGNMENT, 33, 30),
    GETTER(GL_UNPACK_ROW_LENGTH, 33, 30),
    GETTER(GL_UNPACK_SKIP_ROWS, 33, 30),
    GETTER(GL_UNPACK_SKIP_PIXELS, 33, 30),
    GETTER(GL_UNPACK_IMAGE_HEIGHT, 33, 30),
    GETTER(GL_UNPACK_SKIP_IMAGES, 33, 30),
    GETTER(GL_PACK_ALIGNMENT, 33, 30),
    GETTER(GL_PACK_ROW_LENGTH, 33, 30),
    GETTER(GL_UNPACK_SWAP_BYTES, 33, 0),
    GETTER(GL_POLYGON_MODE, 33, 0),
    GETTER(GL_POLYGON_SMOOTH, 33, 0),
    GETTER(GL_SAMPLE_ALPHA_TO_ONE, 33, 0),
    GETTER(GL_COLOR_LOGIC_OP, 33, 0),
    GETTER(GL_LOGIC_OP_MODE, 33, 0),
    GETTER(GL_FRAMEBUFFER_SRGB, 33, 0),
    GETTER(GL_PRIMITIVE_RESTART, 33, 0),
    GETTER(GL_PRIMITIVE_RESTART_INDEX, 33, 0),
    GETTER(GL_PROVOKING_VERTEX, 33, 0),
    GETTER(GL_MULTISAMPLE, 33, 0),
    GETTER(GL_DEPTH_CLAMP, 33, 0),
    GETTER(GL_CLIP_DISTANCE0, 33, 0),
    GETTER(GL_CLIP_DISTANCE5, 33, 0),
    GETTER(GL_CLIP_ORIGIN, 45, 0),
    GETTER(GL_CLIP_DEPTH_MODE, 45, 0),
};
/// Of the second colour buffer, or the second viewport.
constexpr Getter indexedGetters[] = {
    GETTER(GL_BLEND, 33, 32),           GETTER(GL_COLOR_WRITEMASK, 33, 32),    GETTER(GL_BLEND_SRC_RGB, 40, 32),
    GETTER(GL_BLEND_DST_ALPHA, 40, 32), GETTER(GL_BLEND_EQUATION_RGB, 40, 32), GETTER(GL_VIEWPORT, 41, 0),
    GETTER(GL_SCISSOR_TEST, 41, 0),     GETTER(GL_SCISSOR_BOX, 41, 0),
};
#undef GETTER

using State = std::map<std::string, std::vector<GLint>>;

/// A game with an object of every kind and a framebuffer of two colour buffers, each pixel of them of four samples.
class StateTest : public OpenGLTest {
protected:
    static constexpr int width = SampleQuads::width, height = SampleQuads::height;

    void SetUp() override {
        OpenGLTest::SetUp();
        if (IsSkipped()) return;
        version_ = versionOf(GetParam());
        glGenBuffers(static_cast<GLsizei>(std::size(buffers_)), buffers_);
        glGenTextures(static_cast<GLsizei>(std::size(textures_)), textures_);
        glGenSamplers(static_cast<GLsizei>(std::size(samplers_)), samplers_);
        glGenVertexArrays(1, &vertexArray_);
        glGenFramebuffers(2, framebuffers_);
        glGenRenderbuffers(static_cast<GLsizei>(std::size(renderbuffers_)), renderbuffers_);
        makeProgram();
    }

    void makeProgram() {
        const std::string header = isES() ? "#version 300 es\nprecision highp float;\n" : "#version 330 core\n";
        program_ = glCreateProgram();
        for (const auto& [kind, body] : {std::pair{GL_VERTEX_SHADER, "void main() { gl_Position = vec4(0); }"},
                                         {GL_FRAGMENT_SHADER, "out vec4 c; void main() { c = vec4(1); }"}}) {
            const std::string source = header + body;
            const char* text = source.c_str();
            const GLuint shader = glCreateShader(static_cast<GLenum>(kind));
            glShaderSource(shader, 1, &text, nullptr);
            glCompileShader(shader);
            glAttachShader(program_, shader);
        }
        glLinkProgram(program_);
    }

    bool has(const Getter& getter) const {
        const int since = isES() ? getter.es : getter.desktop;
        return since > 0 && version_ >= since;
    }

    /// Everything at its strangest, each value another one than what the panel sets.
    void setStrangeState() {
        bindObjects();
        bindFramebuffers();
        setBlending();
        setTests();
        setPixelTransfer();
        if (!isES()) setDesktopState();
        setSecondBuffer();
        ASSERT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }

    void bindObjects() {
        glUseProgram(program_);
        glBindVertexArray(vertexArray_);
        glBindBuffer(GL_ARRAY_BUFFER, buffers_[0]);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers_[1]);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffers_[2]);
        glBindBuffer(GL_PIXEL_PACK_BUFFER, buffers_[3]);
        glBindBuffer(GL_UNIFORM_BUFFER, buffers_[4]);
        glBindBuffer(GL_COPY_READ_BUFFER, buffers_[5]);
        for (GLuint unit = 0; unit < 4; ++unit) {
            glActiveTexture(GL_TEXTURE0 + unit);
            glBindTexture(GL_TEXTURE_2D, textures_[unit]);
            glBindTexture(GL_TEXTURE_CUBE_MAP, textures_[unit + 4]);
            glBindSampler(unit, samplers_[unit]);
            // It would show: nothing is mixed, and what lies beyond the edge comes round from the other side.
            glSamplerParameteri(samplers_[unit], GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_NEAREST);
            glSamplerParameteri(samplers_[unit], GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        }
    }

    void bindFramebuffers() {
        const auto attach = [this](GLenum place, GLenum format, int samples, int index) {
            glBindRenderbuffer(GL_RENDERBUFFER, renderbuffers_[index]);
            glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, width, height);
            glFramebufferRenderbuffer(GL_FRAMEBUFFER, place, GL_RENDERBUFFER, renderbuffers_[index]);
        };
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffers_[1]);
        attach(GL_COLOR_ATTACHMENT0, GL_RGBA8, 0, 3);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffers_[0]);
        attach(GL_COLOR_ATTACHMENT0, GL_RGBA8, 4, 0);
        attach(GL_COLOR_ATTACHMENT1, GL_RGBA8, 4, 1);
        attach(GL_DEPTH_STENCIL_ATTACHMENT, GL_DEPTH24_STENCIL8, 4, 2);
        constexpr GLenum both[] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1};
        glDrawBuffers(2, both);
        glClearColor(0, 0, 0, 1);
        glClearDepthf(0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffers_[1]);
    }

    static void setBlending() {
        glDisable(GL_BLEND);
        glBlendFuncSeparate(GL_DST_COLOR, GL_ONE_MINUS_DST_COLOR, GL_CONSTANT_ALPHA, GL_SRC_ALPHA_SATURATE);
        glBlendEquationSeparate(GL_FUNC_REVERSE_SUBTRACT, GL_MIN);
        glBlendColor(0.1F, 0.2F, 0.3F, 0.4F);
        glColorMask(GL_FALSE, GL_TRUE, GL_FALSE, GL_TRUE);
        glClearColor(0.5F, 0.25F, 0.125F, 1);
    }

    void setTests() const {
        for (const GLenum test :
             {GL_SCISSOR_TEST, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_CULL_FACE, GL_DITHER, GL_RASTERIZER_DISCARD,
              GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_COVERAGE, GL_POLYGON_OFFSET_FILL})
            glEnable(test);
        if (version_ >= (isES() ? 31 : 33)) {
            glEnable(GL_SAMPLE_MASK);
            glSampleMaski(0, 5);
        }
        if (version_ >= (isES() ? 30 : 43)) glEnable(GL_PRIMITIVE_RESTART_FIXED_INDEX);
        glScissor(3, 4, 5, 6);
        glViewport(7, 8, 9, 10);
        glDepthFunc(GL_GREATER);
        glDepthMask(GL_TRUE);
        glDepthRangef(0.25F, 0.5F);
        glStencilFunc(GL_NEVER, 3, 0x7F);
        glStencilMask(0x3F);
        glStencilOpSeparate(GL_BACK, GL_INVERT, GL_KEEP, GL_REPLACE);
        glCullFace(GL_FRONT_AND_BACK);
        glFrontFace(GL_CW);
        glSampleCoverage(0.25F, GL_TRUE);
        glLineWidth(1);
    }

    static void setPixelTransfer() {
        glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 77);
        glPixelStorei(GL_UNPACK_SKIP_ROWS, 5);
        glPixelStorei(GL_UNPACK_SKIP_PIXELS, 6);
        glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, 88);
        glPixelStorei(GL_UNPACK_SKIP_IMAGES, 2);
        glPixelStorei(GL_PACK_ALIGNMENT, 2);
        glPixelStorei(GL_PACK_ROW_LENGTH, 99);
    }

    void setDesktopState() const {
        for (const GLenum capability :
             {GL_POLYGON_SMOOTH, GL_SAMPLE_ALPHA_TO_ONE, GL_COLOR_LOGIC_OP, GL_FRAMEBUFFER_SRGB, GL_PRIMITIVE_RESTART,
              GL_DEPTH_CLAMP, GL_CLIP_DISTANCE0, GL_CLIP_DISTANCE5})
            glEnable(capability);
        glPixelStorei(GL_UNPACK_SWAP_BYTES, GL_TRUE);
        glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
        glLogicOp(GL_INVERT);
        glPrimitiveRestartIndex(2);
        glProvokingVertex(GL_FIRST_VERTEX_CONVENTION);
        if (version_ >= 45) glClipControl(GL_UPPER_LEFT, GL_ZERO_TO_ONE);
    }

    void setSecondBuffer() const {
        if (version_ >= (isES() ? 32 : 33)) {
            glEnablei(GL_BLEND, 1);
            glColorMaski(1, GL_TRUE, GL_TRUE, GL_FALSE, GL_FALSE);
        }
        if (version_ >= (isES() ? 32 : 40)) {
            glBlendFuncSeparatei(1, GL_ZERO, GL_SRC_COLOR, GL_ZERO, GL_DST_ALPHA);
            glBlendEquationSeparatei(1, GL_MAX, GL_FUNC_SUBTRACT);
        }
        if (isES() || version_ < 41) return;
        glViewportIndexedf(0, 7.5F, 8.5F, 9.25F, 10.75F);
        glViewportIndexedf(1, 1.5F, 2.5F, 3.25F, 4.75F);
        glDisablei(GL_SCISSOR_TEST, 1);
        glScissorIndexed(1, 11, 12, 13, 14);
    }

    State state() const {
        // Far away from what any of the queries answers.
        constexpr GLfloat untouched = -12345;
        State state;
        const auto note = [&](const std::string& label, auto get) {
            std::vector<GLfloat> values(16, untouched);
            get(values.data());
            // In hundredths, as some are fractions.
            for (const GLfloat value : values) state[label].push_back(static_cast<GLint>(value * 100));
        };
        for (const Getter& getter : getters)
            if (has(getter)) note(getter.label, [&](GLfloat* values) { glGetFloatv(getter.name, values); });
        for (const Getter& getter : indexedGetters) {
            if (!has(getter)) continue;
            note(getter.label + std::string(" 1"), [&](GLfloat* values) {
                GLint integers[4] = {};
                if (getter.name == GL_VIEWPORT) return glGetFloati_v(GL_VIEWPORT, 1, values);
                if (getter.name == GL_BLEND || getter.name == GL_SCISSOR_TEST)
                    integers[0] = glIsEnabledi(getter.name, 1);
                else
                    glGetIntegeri_v(getter.name, 1, integers);
                std::ranges::copy(integers, values);
            });
        }
        noteUnits(state);
        return state;
    }

    static void noteUnits(State& state) {
        GLint active = 0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
        for (GLuint unit = 0; unit < 4; ++unit) {
            glActiveTexture(GL_TEXTURE0 + unit);
            for (const GLenum name : {GL_TEXTURE_BINDING_2D, GL_TEXTURE_BINDING_CUBE_MAP, GL_SAMPLER_BINDING}) {
                GLint value = 0;
                glGetIntegerv(name, &value);
                state["unit " + std::to_string(unit)].push_back(value);
            }
        }
        glActiveTexture(static_cast<GLenum>(active));
    }

    /// What the game's framebuffer shows in one of its buffers.
    std::vector<std::uint32_t> read(GLenum attachment) const {
        glDisable(GL_SCISSOR_TEST);
        glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
        glPixelStorei(GL_PACK_ROW_LENGTH, 0);
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffers_[0]);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffers_[1]);
        glReadBuffer(attachment);
        glBlitFramebuffer(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffers_[1]);
        std::vector<std::uint32_t> rows(std::size_t{width} * height), pixels;
        glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, rows.data());
        for (std::size_t y = height; y-- > 0;) {
            for (std::size_t x = 0; x < width; ++x) {
                const std::uint32_t pixel = rows[y * width + x];
                pixels.push_back((pixel & 0xFF00FF00) | (pixel & 255) << 16 | (pixel >> 16 & 255));
            }
        }
        return pixels;
    }

    int version_ = 0;
    GLuint buffers_[6] = {}, textures_[8] = {}, samplers_[4] = {}, framebuffers_[2] = {}, renderbuffers_[4] = {};
    GLuint vertexArray_ = 0, program_ = 0;
};

INSTANTIATE_TEST_SUITE_P(OpenGL, StateTest, ::testing::ValuesIn(glKinds), kindName);

TEST_P(StateTest, IsTheGamesAgainAfterEveryCallAndDoesNotShow) {
    OpenGLCompositor compositor(resolverOf(GetParam()));
    compositor.setTargetSize(width, height);
    setStrangeState();
    const State before = state();
    ASSERT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    const auto expectSame = [&](const char* after) {
        SCOPED_TRACE(after);
        const State now = state();
        for (const auto& [name, values] : before) EXPECT_EQ(now.at(name), values) << name;
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    };

    EXPECT_GE(compositor.maximumTextureSize(), 2048);
    expectSame("making everything");
    SampleQuads quads(compositor);
    expectSame("uploading");
    quads.draw();
    expectSame("drawing");
    compositor.beginFrame();
    SampleQuads others(compositor);
    compositor.destroyTexture(1);
    compositor.endFrame();
    expectSame("uploading within a frame");

    EXPECT_LE(difference(read(GL_COLOR_ATTACHMENT0), SampleQuads::expected(0xFF000000)), rounding);
    const std::vector<std::uint32_t> second = read(GL_COLOR_ATTACHMENT1);
    EXPECT_EQ(std::ranges::count(second, 0xFF000000U), std::ssize(second)) << "only the first buffer is drawn into";
}

TEST_P(StateTest, ErrorsOfTheGameStayTheGames) {
    OpenGLCompositor compositor(resolverOf(GetParam()));
    compositor.setTargetSize(width, height);
    bindFramebuffers();
    // A program that is deleted while it is in use goes as soon as another one is used.
    glUseProgram(program_);
    glDeleteProgram(program_);
    glEnable(0xFFFF);
    SampleQuads(compositor).draw();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM)) << "the game's own";
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

}  // namespace
}  // namespace flarebox::testing
