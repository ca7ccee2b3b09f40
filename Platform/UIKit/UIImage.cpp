#include <UIKit/UIImage.h>

#include <UIKit/AreaAverager.h>

#include <utility>

namespace flarebox {

const ClassInfo& UIImage::staticClass() {
    static const ClassInfo info("UIImage", &NSObject::staticClass(), nullptr);
    return info;
}

UIImage::UIImage(PixelSize size, std::vector<std::uint32_t> pixels, std::shared_ptr<const Origin> origin)
    : pixelSize_(size), pixels_(std::move(pixels)), origin_(std::move(origin)) {}

Ref<UIImage> UIImage::imageWithPixels(int width, int height, std::vector<std::uint32_t> pixels, CGFloat scale) {
    if (width < 1 || height < 1 || !(scale > 0)) return nullptr;
    if (pixels.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) return nullptr;
    const PixelSize size{width, height};
    return make<UIImage>(size, std::move(pixels), std::make_shared<const Origin>(Origin{size, scale, {}}));
}

Ref<UIImage> UIImage::imageWithData(std::span<const std::byte> data, Ref<NSError>* error, const Room& room) {
    return decode({data, {}, nullptr}, error, room);
}

Ref<UIImage> UIImage::imageWithData(const NSData& data, Ref<NSError>* error, const Room& room) {
    return decode({data.bytes(), data, nullptr}, error, room);
}

std::size_t UIImage::byteCost() const {
    return pixels_.size() * sizeof(std::uint32_t) + origin_->data.length();
}

Ref<UIImage> UIImage::averagedTo(PixelSize size) const {
    AreaAverager averager(pixelWidth(), pixelHeight(), size.width, size.height);
    const auto stride = static_cast<std::size_t>(pixelWidth());
    for (std::size_t y = 0; y < static_cast<std::size_t>(pixelHeight()); ++y)
        averager.addRow(std::span(pixels_).subspan(y * stride, stride));
    return make<UIImage>(size, averager.takePixels(), origin_);
}

Ref<UIImage> UIImage::resampledTo(PixelSize size) const {
    const bool isPossible = size.width >= 1 && size.height >= 1 && pixelSize_.holds(size) && size != pixelSize_;
    return isPossible ? averagedTo(size) : Ref<UIImage>(const_cast<UIImage*>(this));
}

Ref<UIImage> UIImage::sizedFor(const Room& room) const {
    const PixelSize wanted = room.sizeOf(wholeSize());
    if (!pixelSize_.holds(wanted) && origin_->data) {
        if (Ref<UIImage> larger = decode({origin_->data.bytes(), origin_->data, origin_}, nullptr, room)) return larger;
    }
    return resampledTo(wanted);
}

bool UIImage::canBeSizedFor(const Room& room) const {
    return origin_->data || pixelSize_.holds(room.sizeOf(wholeSize()));
}

std::string UIImage::description() const {
    return "<UIImage: " + std::to_string(pixelWidth()) + " x " + std::to_string(pixelHeight()) + " pixels>";
}

}  // namespace flarebox
