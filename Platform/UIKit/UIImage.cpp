#include <UIKit/UIImage.h>

#include <UIKit/AreaAverager.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace flarebox {

const ClassInfo& UIImage::staticClass() {
    static const ClassInfo info("UIImage", &NSObject::staticClass(), nullptr);
    return info;
}

UIImage::UIImage(int width, int height, std::vector<std::uint32_t> pixels, CGFloat scale, bool isReduced)
    : width_(width), height_(height), pixels_(std::move(pixels)), scale_(scale), isReduced_(isReduced) {}

Ref<UIImage> UIImage::imageWithPixels(int width, int height, std::vector<std::uint32_t> pixels, CGFloat scale) {
    if (width < 1 || height < 1 || !(scale > 0)) return nullptr;
    if (pixels.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) return nullptr;
    return make<UIImage>(width, height, std::move(pixels), scale, false);
}

Ref<UIImage> UIImage::imageWithData(const NSData& data, Ref<NSError>* error, int maximumPixelSide) {
    return imageWithData(data.bytes(), error, maximumPixelSide);
}

Ref<UIImage> UIImage::downscaledTo(CGSize maximumPixelSize) const {
    const CGFloat factor = std::min(maximumPixelSize.width / width_, maximumPixelSize.height / height_);
    if (!(factor < 1)) return resampledTo(width_, height_);
    const auto side = [factor](int length) {
        return std::max(1, static_cast<int>(std::lround(length * std::max(0.0, factor))));
    };
    return resampledTo(side(width_), side(height_));
}

bool UIImage::canBecome(int pixelWidth, int pixelHeight) const {
    const bool isSmaller = pixelWidth < width_ || pixelHeight < height_;
    return isSmaller && pixelWidth >= 1 && pixelHeight >= 1 && pixelWidth <= width_ && pixelHeight <= height_;
}

Ref<UIImage> UIImage::averagedTo(int pixelWidth, int pixelHeight) const {
    AreaAverager averager(width_, height_, pixelWidth, pixelHeight);
    const auto stride = static_cast<std::size_t>(width_);
    for (std::size_t y = 0; y < static_cast<std::size_t>(height_); ++y)
        averager.addRow(std::span(pixels_).subspan(y * stride, stride));
    return make<UIImage>(pixelWidth, pixelHeight, averager.takePixels(), scale_, true);
}

Ref<UIImage> UIImage::resampledTo(int pixelWidth, int pixelHeight) const {
    if (!canBecome(pixelWidth, pixelHeight)) return Ref<UIImage>(const_cast<UIImage*>(this));
    if (Ref<UIImage> prepared = takePrepared(pixelWidth, pixelHeight)) return prepared;
    return averagedTo(pixelWidth, pixelHeight);
}

void UIImage::prepareResampled(int pixelWidth, int pixelHeight) const {
    if (!canBecome(pixelWidth, pixelHeight)) return;
    Ref<UIImage> made = averagedTo(pixelWidth, pixelHeight);
    const std::lock_guard lock(preparedMutex_);
    std::swap(prepared_, made);
}

Ref<UIImage> UIImage::takePrepared(int pixelWidth, int pixelHeight) const {
    const std::lock_guard lock(preparedMutex_);
    return hasPrepared(pixelWidth, pixelHeight) ? std::exchange(prepared_, nullptr) : nullptr;
}

bool UIImage::isPreparedFor(int pixelWidth, int pixelHeight) const {
    const std::lock_guard lock(preparedMutex_);
    return hasPrepared(pixelWidth, pixelHeight);
}

bool UIImage::hasPrepared(int pixelWidth, int pixelHeight) const {
    return prepared_ && prepared_->width_ == pixelWidth && prepared_->height_ == pixelHeight;
}

std::string UIImage::description() const {
    return "<UIImage: " + std::to_string(width_) + " x " + std::to_string(height_) + " pixels>";
}

}  // namespace flarebox
