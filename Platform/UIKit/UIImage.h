#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>
#include <UIKit/Geometry.h>
#include <UIKit/PictureRoom.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace flarebox {

/// A picture in memory, in as many pixels as are needed of it. Immutable and shared; may be made, read and released on
/// any thread.
class FLAREBOX_EXPORT UIImage : public NSObject {
    FLAREBOX_CLASS(UIImage)
public:
    /// Largest encoded picture in bytes and largest decoded one in pixels; beyond them a picture is refused unread.
    /// Twice the sharpest screen each way, and what that takes well packed: several pictures arrive at the same time,
    /// and the one that is being decoded takes up to nine bytes a pixel.
    static constexpr std::size_t maximumDataLength = std::size_t{8} << 20;
    static constexpr std::int64_t maximumPixelCount = std::int64_t{4096} * 4096;  ///< see there

    using PixelSize = flarebox::PixelSize;  ///< width and height
    using Room = PictureRoom;               ///< where a picture is to be shown

    /// Decodes PNG, JPEG, WebP, or the first frame of a GIF, and keeps no more pixels than it takes in the room.
    /// Null when the data is too long, of another format, damaged, or too large; `error` (may be null) then says why:
    /// NSURLErrorDataLengthExceedsMaximum or NSURLErrorCannotDecodeContentData of NSURLErrorDomain. Any thread.
    static Ref<UIImage> imageWithData(std::span<const std::byte> data, Ref<NSError>* error = nullptr,
                                      const Room& room = {});
    /// A picture made smaller keeps the data as well, for `sizedFor` to make it larger again, where that takes less
    /// memory than the pixels left out.
    static Ref<UIImage> imageWithData(const NSData& data, Ref<NSError>* error = nullptr, const Room& room = {});
    /// Takes over `width` x `height` pixels, each 0xAARRGGBB with the colour premultiplied by the alpha.
    /// Null when the sizes are not positive or do not match the number of pixels.
    static Ref<UIImage> imageWithPixels(int width, int height, std::vector<std::uint32_t> pixels, CGFloat scale = 1);

    int pixelWidth() const { return pixelSize_.width; }        ///< at least 1
    int pixelHeight() const { return pixelSize_.height; }      ///< at least 1
    const PixelSize& pixelSize() const { return pixelSize_; }  ///< of what is kept
    /// Rows from the top, without gaps.
    std::span<const std::uint32_t> pixels() const { return pixels_; }
    /// Pixels per point of the whole picture.
    CGFloat scale() const { return origin_->scale; }
    /// In points. The same in however many pixels the picture is kept.
    CGSize size() const { return {wholeSize().width / scale(), wholeSize().height / scale()}; }
    /// Of the picture before any of it was left out.
    const PixelSize& wholeSize() const { return origin_->size; }
    /// Whether it has fewer pixels than the picture that it comes from, which holds more detail then.
    bool isReduced() const { return pixelSize_ != origin_->size; }
    /// Whether the other one is this picture, in as many pixels or in others.
    bool isSamePictureAs(const UIImage& other) const { return origin_ == other.origin_; }
    /// Memory that the pixels take, and the data from which they can be made anew.
    std::size_t byteCost() const;

    /// The picture averaged to exactly that many pixels, which must be at least 1 and at most its own size; itself
    /// otherwise.
    Ref<UIImage> resampledTo(PixelSize size) const;
    /// The picture in as many pixels as it takes in the room, decoded anew where it has fewer now and its data was
    /// kept; otherwise what comes nearest. Never null. Any thread, but it takes milliseconds.
    Ref<UIImage> sizedFor(const Room& room) const;

    /// Whether `sizedFor` of that room gives the picture all the pixels that it takes there.
    bool canBeSizedFor(const Room& room) const;

    std::string description() const override;  ///< for the log

    /// For the class itself: what is the same for a picture in all its sizes.
    struct Origin {
        PixelSize size;     ///< of the whole picture
        CGFloat scale = 1;  ///< pixels per point
        /// Absent where the pixels are all there is.
        NSData data;
    };
    /// For the class itself.
    UIImage(PixelSize size, std::vector<std::uint32_t> pixels, std::shared_ptr<const Origin> origin);

private:
    /// Encoded bytes, the value that keeps them (may be absent), and where they have been decoded before, their origin.
    struct Source {
        std::span<const std::byte> bytes;
        NSData data;
        std::shared_ptr<const Origin> origin;
    };
    static Ref<UIImage> decode(const Source& source, Ref<NSError>* error, const Room& room);
    Ref<UIImage> averagedTo(PixelSize size) const;

    PixelSize pixelSize_;
    std::vector<std::uint32_t> pixels_;
    std::shared_ptr<const Origin> origin_;
};

}  // namespace flarebox
