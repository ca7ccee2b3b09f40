#include <Foundation/LogSink.h>
#include <Host/OpenGL/GLQuads.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>

namespace flarebox::detail {
namespace {

constexpr const char* desktopHeader = "#version 330 core\n";
constexpr const char* esHeader = "#version 300 es\nprecision highp float;\n";

constexpr const char* vertexShader = R"(
layout(location = 0) in vec2 position;
layout(location = 1) in vec2 texel;
layout(location = 2) in vec4 bounds;
layout(location = 3) in float opacity;
uniform vec2 targetSize;
out vec2 place;
out vec4 limits;
out float strength;
void main() {
    place = texel;
    limits = bounds;
    strength = opacity;
    vec2 part = position / targetSize;
    gl_Position = vec4(part.x * 2.0 - 1.0, 1.0 - part.y * 2.0, 0.0, 1.0);
}
)";

constexpr const char* fragmentShader = R"(
in vec2 place;
in vec4 limits;
in float strength;
uniform sampler2D picture;
uniform bool isLinear;
out vec4 color;
vec3 lightOf(vec3 value) {
    return mix(value / 12.92, pow((value + 0.055) / 1.055, vec3(2.4)), step(0.04045, value));
}
void main() {
    vec2 size = vec2(textureSize(picture, 0));
    color = texture(picture, clamp(place, limits.xy, limits.zw) / size) * strength;
    if (isLinear && color.a > 0.0) color.rgb = lightOf(color.rgb / color.a) * color.a;
}
)";

std::string logOf(PFNGLGETSHADERIVPROC get, PFNGLGETSHADERINFOLOGPROC read, GLuint object) {
    GLint length = 0;
    get(object, GL_INFO_LOG_LENGTH, &length);
    std::string text(static_cast<std::size_t>(std::max(length, 1)), '\0');
    read(object, static_cast<GLsizei>(text.size()), &length, text.data());
    text.resize(static_cast<std::size_t>(std::clamp<GLint>(length, 0, static_cast<GLint>(text.size()))));
    return text;
}

void report(const std::string& reason) {
    LogSink::write(LogLevelError, "OpenGL: the panel's shader cannot be made, so it is not shown: " + reason);
}

}  // namespace

std::optional<GLQuads> GLQuads::make(const GLFunctions& gl) {
    GLQuads quads(gl);
    if (!quads.makeProgram()) return std::nullopt;
    quads.makeBuffer();
    return quads;
}

bool GLQuads::makeProgram() {
    program_ = gl_->CreateProgram();
    const bool isLinked =
        attach(GL_VERTEX_SHADER, vertexShader) && attach(GL_FRAGMENT_SHADER, fragmentShader) && link();
    if (!isLinked) {
        gl_->DeleteProgram(program_);
        return false;
    }
    targetSize_ = gl_->GetUniformLocation(program_, "targetSize");
    isLinear_ = gl_->GetUniformLocation(program_, "isLinear");
    return true;
}

bool GLQuads::attach(GLenum kind, const char* source) {
    const GLuint shader = gl_->CreateShader(kind);
    const std::array<const char*, 2> parts = {gl_->isES ? esHeader : desktopHeader, source};
    gl_->ShaderSource(shader, static_cast<GLsizei>(parts.size()), parts.data(), nullptr);
    gl_->CompileShader(shader);
    GLint isCompiled = GL_FALSE;
    gl_->GetShaderiv(shader, GL_COMPILE_STATUS, &isCompiled);
    if (!isCompiled) report(logOf(gl_->GetShaderiv, gl_->GetShaderInfoLog, shader));
    gl_->AttachShader(program_, shader);
    // It goes together with the program.
    gl_->DeleteShader(shader);
    return isCompiled == GL_TRUE;
}

bool GLQuads::link() {
    gl_->LinkProgram(program_);
    GLint isLinked = GL_FALSE;
    gl_->GetProgramiv(program_, GL_LINK_STATUS, &isLinked);
    if (!isLinked) report(logOf(gl_->GetProgramiv, gl_->GetProgramInfoLog, program_));
    return isLinked == GL_TRUE;
}

void GLQuads::makeBuffer() {
    gl_->GenVertexArrays(1, &vertexArray_);
    gl_->GenBuffers(1, &buffer_);
    gl_->BindVertexArray(vertexArray_);
    gl_->BindBuffer(GL_ARRAY_BUFFER, buffer_);
    const auto attribute = [this](GLuint index, GLint count, std::size_t offset) {
        gl_->EnableVertexAttribArray(index);
        gl_->VertexAttribPointer(index, count, GL_FLOAT, GL_FALSE, sizeof(Vertex),
                                 reinterpret_cast<const void*>(offset));
    };
    attribute(0, 2, offsetof(Vertex, x));
    attribute(1, 2, offsetof(Vertex, u));
    attribute(2, 4, offsetof(Vertex, left));
    attribute(3, 1, offsetof(Vertex, opacity));
}

void GLQuads::destroy() {
    gl_->DeleteProgram(program_);
    gl_->DeleteVertexArrays(1, &vertexArray_);
    gl_->DeleteBuffers(1, &buffer_);
}

void GLQuads::add(GLuint texture, const TexturedQuad& quad, const PixelRect& area) {
    const auto number = [](auto value) { return static_cast<GLfloat>(value); };
    const PixelRect& source = quad.source;
    const CGRect& place = quad.destination;
    const GLfloat opacity = std::round(std::clamp(quad.opacity, 0.0F, 1.0F) * 255) / 255;
    const auto corner = [&](int x, int y) {
        const CGFloat u = source.x + (x - place.minX()) / place.width() * source.width;
        const CGFloat v = source.y + (y - place.minY()) / place.height() * source.height;
        vertices_.push_back({number(x), number(y), number(u), number(v), number(source.x + 0.5), number(source.y + 0.5),
                             number(source.x + source.width - 0.5), number(source.y + source.height - 0.5), opacity});
    };
    const int right = area.x + area.width, bottom = area.y + area.height;
    corner(area.x, area.y);
    corner(area.x, bottom);
    corner(right, area.y);
    corner(right, area.y);
    corner(area.x, bottom);
    corner(right, bottom);
    if (batches_.empty() || batches_.back().texture != texture) batches_.push_back({texture, 0});
    batches_.back().count += 6;
}

void GLQuads::draw(int width, int height, bool isLinear) {
    gl_->UseProgram(program_);
    gl_->Uniform2f(targetSize_, static_cast<GLfloat>(width), static_cast<GLfloat>(height));
    gl_->Uniform1i(isLinear_, isLinear ? 1 : 0);
    gl_->BindVertexArray(vertexArray_);
    gl_->BindBuffer(GL_ARRAY_BUFFER, buffer_);
    gl_->BufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices_.size() * sizeof(Vertex)), vertices_.data(),
                    GL_STREAM_DRAW);
    GLint first = 0;
    for (const Batch& batch : batches_) {
        gl_->BindTexture(GL_TEXTURE_2D, batch.texture);
        gl_->DrawArrays(GL_TRIANGLES, first, batch.count);
        first += batch.count;
    }
    vertices_.clear();
    batches_.clear();
}

}  // namespace flarebox::detail
