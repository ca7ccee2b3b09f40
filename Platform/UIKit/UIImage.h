#pragma once

#include <Foundation/NSError.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>
#include <UIKit/Geometry.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace flarebox {

/// A picture in memory. Immutable and shared; may be made, read and released on any thread.
class UIImage : public NSObject {
    FLAREBOX_CLASS(UIImage)
public:
    /// Largest encoded picture in bytes and largest decoded one in pixels; beyond them a picture is refused unread.
    static constexpr std::size_t maximumDataLength = std::size_t{32} << 20;
    static constexpr std::int64_t maximumPixelCount = 64'000'000;

    /// Decodes PNG, JPEG, WebP, or the first frame of a GIF. A picture that would not fit into `maximumPixelSide` x
    /// `maximumPixelSide` pixels is made smaller while it is read, its proportions kept; 0 leaves it as it is.
    /// Null when the data is too long, of another format, damaged, or too large; `error` (may be null) then says why:
    /// NSURLErrorDataLengthExceedsMaximum or NSURLErrorCannotDecodeContentData of NSURLErrorDomain. Any thread.
    static Ref<UIImage> imageWithData(std::span<const std::byte> data, Ref<NSError>* error = nullptr,
                                      int maximumPixelSide = 0);
    static Ref<UIImage> imageWithData(const NSData& data, Ref<NSError>* error = nullptr, int maximumPixelSide = 0);
    /// Takes over `width` x `height` pixels, each 0xAARRGGBB with the colour premultiplied by the alpha.
    /// Null when the sizes are not positive or do not match the number of pixels.
    static Ref<UIImage> imageWithPixels(int width, int height, std::vector<std::uint32_t> pixels, CGFloat scale = 1);

    int pixelWidth() const { return width_; }
    int pixelHeight() const { return height_; }
    /// Rows from the top, without gaps.
    std::span<const std::uint32_t> pixels() const { return pixels_; }
    /// Pixels per point.
    CGFloat scale() const { return scale_; }
    /// In points.
    CGSize size() const { return {width_ / scale_, height_ / scale_}; }
    /// Whether it was made smaller than the picture that it comes from, which holds more detail then.
    bool isReduced() const { return isReduced_; }
    /// Memory that the pixels take.
    std::size_t byteCost() const { return pixels_.size() * sizeof(std::uint32_t); }

    /// The picture averaged down to fit into that many pixels, its proportions kept; itself when it fits already. Any
    /// thread.
    Ref<UIImage> downscaledTo(CGSize maximumPixelSize) const;
    /// The picture averaged to exactly that many pixels, which must be at least 1 and at most its own size; itself
    /// otherwise.
    Ref<UIImage> resampledTo(int pixelWidth, int pixelHeight) const;

    std::string description() const override;

    /// For the class itself: `imageWithPixels` checks the arguments.
    UIImage(int width, int height, std::vector<std::uint32_t> pixels, CGFloat scale, bool isReduced);

private:
    int width_, height_;
    std::vector<std::uint32_t> pixels_;
    CGFloat scale_;
    bool isReduced_;
};

}  // namespace flarebox
