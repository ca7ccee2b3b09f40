#pragma once

#include <cstdint>
#include <vector>

namespace flarebox::examples {

/// A framebuffer of 8 bits a colour with depth and stencil, in the context that is current. It is bound once it is
/// made.
class OffscreenTarget {
public:
    enum class Encoding { Plain, SRGB };
    /// Sides in pixels.
    OffscreenTarget(int width, int height, Encoding encoding = Encoding::Plain);
    ~OffscreenTarget();
    OffscreenTarget(const OffscreenTarget&) = delete;
    OffscreenTarget& operator=(const OffscreenTarget&) = delete;

    void bind() const;
    int width() const { return width_; }
    int height() const { return height_; }
    /// Rows from the top without gaps, each pixel 0xAARRGGBB. Binds the framebuffer for reading.
    std::vector<std::uint32_t> pixels() const;

private:
    int width_, height_;
    unsigned framebuffer_ = 0, color_ = 0, depth_ = 0;
};

}  // namespace flarebox::examples
