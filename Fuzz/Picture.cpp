// Pictures: what is decoded keeps what its header promised, within bounds.

#include <Fuzz/Support/ByteSource.h>

#include <UIKit/ImageHeader.h>
#include <UIKit/UIImage.h>

#include <algorithm>

namespace flarebox::fuzz {
namespace {

void checkPixels(const UIImage& image) {
    const auto width = static_cast<std::size_t>(image.pixelWidth()),
               height = static_cast<std::size_t>(image.pixelHeight());
    check(width > 0 && height > 0, "a picture has a size");
    check(image.pixels().size() == width * height, "every pixel is there");
    check(width * height <= static_cast<std::size_t>(UIImage::maximumPixelCount), "a picture is bounded");
    const bool isPremultiplied = std::ranges::all_of(image.pixels(), [](std::uint32_t pixel) {
        const std::uint32_t alpha = pixel >> 24;
        return (pixel >> 16 & 255) <= alpha && (pixel >> 8 & 255) <= alpha && (pixel & 255) <= alpha;
    });
    check(isPremultiplied, "no colour is stronger than its alpha");
}

}  // namespace

FLAREBOX_FUZZER(Picture) {
    ByteSource source(input);
    static constexpr int sides[] = {0, 1, 64, 1000};
    const int side = source.pick(sides);
    const auto data = std::as_bytes(source.rest());
    const auto header = readImageHeader(data);
    // Those in between take long and teach nothing new.
    const double pixelCount = header ? static_cast<double>(header->width) * static_cast<double>(header->height) : 0;
    if (pixelCount > 1e6 && pixelCount <= static_cast<double>(UIImage::maximumPixelCount)) return;

    Ref<NSError> error;
    const Ref<UIImage> image =
        UIImage::imageWithData(data, &error, side > 0 ? UIImage::Room{{side * 1.0, side * 1.0}} : UIImage::Room());
    check(!image == static_cast<bool>(error), "a picture or an error");
    if (!image) return;
    check(header.has_value(), "what can be decoded has a header");
    checkPixels(*image);
    const bool isWhole = image->pixelWidth() == header->width && image->pixelHeight() == header->height;
    check(isWhole || image->isReduced(), "a picture is as large as its header says");
    if (side > 0) check(image->pixelWidth() <= side && image->pixelHeight() <= side, "a picture fits");
    const Ref<UIImage> small = image->resampledTo(UIImage::Room{{7, 5}}.sizeOf(image->pixelSize()));
    checkPixels(*small);
    check(small->pixelWidth() <= 7 && small->pixelHeight() <= 5, "a smaller one fits");
}

}  // namespace flarebox::fuzz
