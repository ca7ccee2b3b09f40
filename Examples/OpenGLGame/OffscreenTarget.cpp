#include "OffscreenTarget.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/glcorearb.h>

#include <cstddef>

namespace flarebox::examples {

OffscreenTarget::OffscreenTarget(int width, int height, Encoding encoding) : width_(width), height_(height) {
    glGenFramebuffers(1, &framebuffer_);
    glGenRenderbuffers(1, &color_);
    glGenRenderbuffers(1, &depth_);
    bind();
    glBindRenderbuffer(GL_RENDERBUFFER, color_);
    glRenderbufferStorage(GL_RENDERBUFFER, encoding == Encoding::SRGB ? GL_SRGB8_ALPHA8 : GL_RGBA8, width, height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color_);
    glBindRenderbuffer(GL_RENDERBUFFER, depth_);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH24_STENCIL8, width, height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER, depth_);
}

OffscreenTarget::~OffscreenTarget() {
    glDeleteFramebuffers(1, &framebuffer_);
    glDeleteRenderbuffers(1, &color_);
    glDeleteRenderbuffers(1, &depth_);
}

void OffscreenTarget::bind() const {
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
}

std::vector<std::uint32_t> OffscreenTarget::pixels() const {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer_);
    const auto width = static_cast<std::size_t>(width_), height = static_cast<std::size_t>(height_);
    std::vector<unsigned char> bytes(width * height * 4);
    glReadPixels(0, 0, width_, height_, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    std::vector<std::uint32_t> pixels(width * height);
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const unsigned char* from = &bytes[((height - 1 - y) * width + x) * 4];
            pixels[y * width + x] = static_cast<std::uint32_t>(from[3]) << 24 |
                                    static_cast<std::uint32_t>(from[0]) << 16 |
                                    static_cast<std::uint32_t>(from[1]) << 8 | from[2];
        }
    }
    return pixels;
}

}  // namespace flarebox::examples
