#include <Foundation/LogSink.h>
#include <Host/OpenGL/GLQuads.h>
#include <Host/OpenGL/GLState.h>
#include <Host/OpenGL/OpenGLCompositor.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <optional>
#include <utility>

namespace flarebox {
namespace {

using namespace detail;

// Pixels are handed over as bytes, in an order that OpenGL ES does not know; the texture puts them right: where red,
// green, blue and alpha are found in the four bytes of 0xAARRGGBB.
constexpr std::array<GLint, 4> byteOrder = std::endian::native == std::endian::little
                                               ? std::array<GLint, 4>{GL_BLUE, GL_GREEN, GL_RED, GL_ALPHA}
                                               : std::array<GLint, 4>{GL_GREEN, GL_BLUE, GL_ALPHA, GL_RED};

}  // namespace

/// What is made in one context.
class OpenGLCompositor::Device {
public:
    static std::unique_ptr<Device> make(const OpenGLResolver& resolve) {
        const std::optional<GLFunctions> gl = GLFunctions::load(resolve);
        if (!gl) return nullptr;
        auto device = std::make_unique<Device>(*gl);
        const GLDrawState state(device->gl, false, 1, 1);
        device->quads = GLQuads::make(device->gl);
        return device->quads ? std::move(device) : nullptr;
    }

    explicit Device(const GLFunctions& functions)
        : gl(functions),
          canSwitchEncoding(!gl.isES || gl.hasExtension("GL_EXT_sRGB_write_control")),
          maximumTextureSize(integer(GL_MAX_TEXTURE_SIZE)) {}

    GLint integer(GLenum name) const {
        GLint value = 0;
        gl.GetIntegerv(name, &value);
        return value;
    }

    /// Whether the bound framebuffer can be drawn into; the log says once that it cannot.
    bool hasTarget() {
        if (gl.CheckFramebufferStatus(GL_DRAW_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE) return true;
        if (!std::exchange(hasReportedTarget, true))
            LogSink::write(LogLevelError, "OpenGL: the bound framebuffer is not complete; the panel is not drawn");
        return false;
    }

    /// Whether the target turns what is drawn into sRGB on its own account, and cannot be told not to.
    bool encodes() const {
        if (canSwitchEncoding) return false;
        const GLenum attachment = integer(GL_DRAW_FRAMEBUFFER_BINDING) == 0 ? GL_BACK : GL_COLOR_ATTACHMENT0;
        const auto parameter = [&](GLenum name) {
            GLint value = 0;
            gl.GetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, attachment, name, &value);
            return value;
        };
        return parameter(GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE) != GL_NONE &&
               parameter(GL_FRAMEBUFFER_ATTACHMENT_COLOR_ENCODING) == GL_SRGB;
    }

    /// Within a frame.
    void flush(int width, int height) {
        if (!quads->isEmpty()) quads->draw(width, height, isLinear);
    }

    const GLFunctions gl;
    const bool canSwitchEncoding;
    const int maximumTextureSize;
    std::optional<GLQuads> quads;
    /// The game's, while a frame is drawn.
    std::optional<GLDrawState> frame;
    bool isLinear = false, hasReportedTarget = false;
};

OpenGLCompositor::OpenGLCompositor(OpenGLResolver resolve) : resolve_(std::move(resolve)) {}

OpenGLCompositor::~OpenGLCompositor() {
    if (!device_) return;
    for (const Texture& texture : textures_) {
        if (texture.name) device_->gl.DeleteTextures(1, &texture.name);
    }
    device_->quads->destroy();
}

void OpenGLCompositor::setTargetSize(int width, int height) {
    width_ = std::max(width, 1);
    height_ = std::max(height, 1);
}

void OpenGLCompositor::contextLost() {
    device_ = nullptr;
    hasFailed_ = false;
    textures_.clear();
}

OpenGLCompositor::Device* OpenGLCompositor::device() const {
    if (!device_ && !hasFailed_) {
        device_ = Device::make(resolve_);
        hasFailed_ = !device_;
    }
    return device_.get();
}

OpenGLCompositor::Texture* OpenGLCompositor::textureOf(TextureId texture) {
    const bool exists = texture >= 1 && texture <= textures_.size() && textures_[texture - 1].name != 0;
    return exists ? &textures_[texture - 1] : nullptr;
}

int OpenGLCompositor::maximumTextureSize() const {
    const Device* device = this->device();
    const int limit = Compositor::maximumTextureSize();
    return device ? std::min(limit, device->maximumTextureSize) : limit;
}

TextureId OpenGLCompositor::createTexture(int width, int height) {
    Device* device = this->device();
    if (!device || width <= 0 || height <= 0 || std::max(width, height) > device->maximumTextureSize) return 0;
    const GLFunctions& gl = device->gl;
    const GLTextureState state(gl);
    Texture made{0, width, height};
    gl.GenTextures(1, &made.name);
    if (made.name == 0) return 0;
    gl.BindTexture(GL_TEXTURE_2D, made.name);
    gl.TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    const auto set = [&gl](GLenum name, GLint value) { gl.TexParameteri(GL_TEXTURE_2D, name, value); };
    set(GL_TEXTURE_MAX_LEVEL, 0);
    set(GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    set(GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    set(GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    set(GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    for (std::size_t i = 0; i < byteOrder.size(); ++i) set(GL_TEXTURE_SWIZZLE_R + static_cast<GLenum>(i), byteOrder[i]);

    auto place = std::ranges::find(textures_, 0U, &Texture::name);
    if (place == textures_.end()) place = textures_.emplace(place);
    *place = made;
    return static_cast<TextureId>(place - textures_.begin() + 1);
}

void OpenGLCompositor::updateTexture(TextureId id, const PixelRect& region, const std::uint32_t* pixels, int stride) {
    const Texture* texture = textureOf(id);
    const bool fits = texture && region.x >= 0 && region.y >= 0 && region.width > 0 && region.height > 0 &&
                      region.x + region.width <= texture->width && region.y + region.height <= texture->height &&
                      stride >= region.width;
    if (!fits || !pixels) return;
    // What is drawn with it so far shows the pixels that it has now.
    if (device_->frame) device_->flush(width_, height_);
    const GLFunctions& gl = device_->gl;
    const GLTextureState state(gl);
    gl.PixelStorei(GL_UNPACK_ROW_LENGTH, stride);
    gl.BindTexture(GL_TEXTURE_2D, texture->name);
    gl.TexSubImage2D(GL_TEXTURE_2D, 0, region.x, region.y, region.width, region.height, GL_RGBA, GL_UNSIGNED_BYTE,
                     pixels);
}

void OpenGLCompositor::destroyTexture(TextureId id) {
    Texture* doomed = textureOf(id);
    if (!doomed) return;
    if (device_->frame) device_->flush(width_, height_);
    device_->gl.DeleteTextures(1, &doomed->name);
    *doomed = Texture();
}

void OpenGLCompositor::drawQuad(const TexturedQuad& quad) {
    if (!device_ || !device_->frame) return;
    const Texture* texture = textureOf(quad.texture);
    if (!texture) return;
    // Found here rather than by a scissor, so that clips need no batch of their own.
    const PixelRect area = coveredPixels(quad, texture->width, texture->height, width_, height_);
    if (!area.isEmpty()) device_->quads->add(texture->name, quad, area);
}

void OpenGLCompositor::beginFrame() {
    Device* device = this->device();
    if (!device || device->frame || !device->hasTarget()) return;
    device->isLinear = device->encodes();
    device->frame.emplace(device->gl, device->canSwitchEncoding, width_, height_);
}

void OpenGLCompositor::endFrame() {
    if (!device_ || !device_->frame) return;
    device_->flush(width_, height_);
    device_->frame.reset();
}

}  // namespace flarebox
