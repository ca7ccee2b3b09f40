#pragma once

#include <Foundation/NSError.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>
#include <UIKit/Geometry.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
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

    struct PixelSize {
        int width = 0, height = 0;
        friend bool operator==(const PixelSize&, const PixelSize&) = default;
    };
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
    /// Makes the copy that `resampledTo` of that size answers the next time, so that the main thread need not. Another
    /// one that was made before and not asked for is dropped. Any thread.
    void prepareResampled(int pixelWidth, int pixelHeight) const;
    /// Whether such a copy waits to be asked for. Any thread.
    bool isPreparedFor(int pixelWidth, int pixelHeight) const;

    std::string description() const override;

    /// For the class itself: `imageWithPixels` checks the arguments.
    UIImage(int width, int height, std::vector<std::uint32_t> pixels, CGFloat scale, bool isReduced);

private:
    bool canBecome(int pixelWidth, int pixelHeight) const;
    Ref<UIImage> averagedTo(int pixelWidth, int pixelHeight) const;
    Ref<UIImage> takePrepared(int pixelWidth, int pixelHeight) const;
    /// Under the lock.
    bool hasPrepared(int pixelWidth, int pixelHeight) const;

    int width_, height_;
    std::vector<std::uint32_t> pixels_;
    CGFloat scale_;
    bool isReduced_;
    mutable std::mutex preparedMutex_;
    mutable Ref<UIImage> prepared_;
};

}  // namespace flarebox
