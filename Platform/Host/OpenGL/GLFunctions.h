#pragma once

#include <Host/OpenGL/OpenGLResolver.h>

#include <GL/glcorearb.h>

#include <optional>
#include <string_view>

namespace flarebox::detail {

/// Since which version of desktop OpenGL and of OpenGL ES something exists, as 33 for 3.3; `never` where it does not.
struct GLSince {
    static constexpr int always = 0, never = 1000;
    int desktop = always, es = always;
};

// Name, name in capitals, since which version of desktop OpenGL and OpenGL ES.
#define FLAREBOX_GL_FUNCTIONS(X)                                                                \
    X(ActiveTexture, ACTIVETEXTURE, always, always)                                             \
    X(AttachShader, ATTACHSHADER, always, always)                                               \
    X(BindBuffer, BINDBUFFER, always, always)                                                   \
    X(BindSampler, BINDSAMPLER, always, always)                                                 \
    X(BindTexture, BINDTEXTURE, always, always)                                                 \
    X(BindVertexArray, BINDVERTEXARRAY, always, always)                                         \
    X(BlendEquationSeparate, BLENDEQUATIONSEPARATE, always, always)                             \
    X(BlendEquationSeparatei, BLENDEQUATIONSEPARATEI, 40, 32)                                   \
    X(BlendFuncSeparate, BLENDFUNCSEPARATE, always, always)                                     \
    X(BlendFuncSeparatei, BLENDFUNCSEPARATEI, 40, 32)                                           \
    X(BufferData, BUFFERDATA, always, always)                                                   \
    X(CheckFramebufferStatus, CHECKFRAMEBUFFERSTATUS, always, always)                           \
    X(ClipControl, CLIPCONTROL, 45, never)                                                      \
    X(ColorMask, COLORMASK, always, always)                                                     \
    X(ColorMaski, COLORMASKI, always, 32)                                                       \
    X(CompileShader, COMPILESHADER, always, always)                                             \
    X(CreateProgram, CREATEPROGRAM, always, always)                                             \
    X(CreateShader, CREATESHADER, always, always)                                               \
    X(DeleteBuffers, DELETEBUFFERS, always, always)                                             \
    X(DeleteProgram, DELETEPROGRAM, always, always)                                             \
    X(DeleteShader, DELETESHADER, always, always)                                               \
    X(DeleteTextures, DELETETEXTURES, always, always)                                           \
    X(DeleteVertexArrays, DELETEVERTEXARRAYS, always, always)                                   \
    X(Disable, DISABLE, always, always)                                                         \
    X(Disablei, DISABLEI, always, 32)                                                           \
    X(DrawArrays, DRAWARRAYS, always, always)                                                   \
    X(DrawBuffers, DRAWBUFFERS, always, always)                                                 \
    X(Enable, ENABLE, always, always)                                                           \
    X(Enablei, ENABLEI, always, 32)                                                             \
    X(EnableVertexAttribArray, ENABLEVERTEXATTRIBARRAY, always, always)                         \
    X(GenBuffers, GENBUFFERS, always, always)                                                   \
    X(GenTextures, GENTEXTURES, always, always)                                                 \
    X(GenVertexArrays, GENVERTEXARRAYS, always, always)                                         \
    X(GetBooleanv, GETBOOLEANV, always, always)                                                 \
    X(GetFloatv, GETFLOATV, always, always)                                                     \
    X(GetFramebufferAttachmentParameteriv, GETFRAMEBUFFERATTACHMENTPARAMETERIV, always, always) \
    X(GetIntegerv, GETINTEGERV, always, always)                                                 \
    X(GetProgramInfoLog, GETPROGRAMINFOLOG, always, always)                                     \
    X(GetProgramiv, GETPROGRAMIV, always, always)                                               \
    X(GetShaderInfoLog, GETSHADERINFOLOG, always, always)                                       \
    X(GetShaderiv, GETSHADERIV, always, always)                                                 \
    X(GetString, GETSTRING, always, always)                                                     \
    X(GetStringi, GETSTRINGI, always, always)                                                   \
    X(GetUniformLocation, GETUNIFORMLOCATION, always, always)                                   \
    X(IsEnabled, ISENABLED, always, always)                                                     \
    X(IsProgram, ISPROGRAM, always, always)                                                     \
    X(LinkProgram, LINKPROGRAM, always, always)                                                 \
    X(PixelStorei, PIXELSTOREI, always, always)                                                 \
    X(PolygonMode, POLYGONMODE, always, never)                                                  \
    X(ShaderSource, SHADERSOURCE, always, always)                                               \
    X(TexImage2D, TEXIMAGE2D, always, always)                                                   \
    X(TexParameteri, TEXPARAMETERI, always, always)                                             \
    X(TexSubImage2D, TEXSUBIMAGE2D, always, always)                                             \
    X(Uniform1i, UNIFORM1I, always, always)                                                     \
    X(Uniform2f, UNIFORM2F, always, always)                                                     \
    X(UseProgram, USEPROGRAM, always, always)                                                   \
    X(VertexAttribPointer, VERTEXATTRIBPOINTER, always, always)                                 \
    X(Viewport, VIEWPORT, always, always)                                                       \
    X(ViewportIndexedf, VIEWPORTINDEXEDF, 41, never)

/// The functions of the context that is current, and what it can do. Functions that its version does not have are null.
struct GLFunctions {
    /// None, with the reason in the log, when there is no context, when it is too old, or when a function is missing.
    static std::optional<GLFunctions> load(const OpenGLResolver& resolve);

    bool has(GLSince since) const { return version >= (isES ? since.es : since.desktop); }
    bool hasExtension(std::string_view name) const;

    bool isES = false;
    /// As 33 for 3.3.
    int version = 0;
#define FLAREBOX_GL_MEMBER(name, capitals, desktop, es) PFNGL##capitals##PROC name = nullptr;
    FLAREBOX_GL_FUNCTIONS(FLAREBOX_GL_MEMBER)
#undef FLAREBOX_GL_MEMBER
};

}  // namespace flarebox::detail
