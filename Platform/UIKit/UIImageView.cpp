#include <UIKit/UIImageView.h>
#include <UIKit/UIScreen.h>

#include <UIKit/UIScreen.h>

#include <algorithm>
#include <cmath>

namespace flarebox {
namespace {

constexpr double fadeDuration = 0.15;
/// Bytes up to which the copy that was drawn is kept for the next time. Large ones are drawn again too rarely.
constexpr std::size_t keptCopyLength = std::size_t{1} << 20;

/// Whole pixels, and no more than the picture has.
UIImage::PixelSize pixelsWithin(const UIImage& image, CGSize pixels) {
    const auto side = [](CGFloat length, int own) { return std::clamp(static_cast<int>(std::lround(length)), 1, own); };
    return {side(std::min(pixels.width, 1e6), image.pixelWidth()),
            side(std::min(pixels.height, 1e6), image.pixelHeight())};
}

}  // namespace

const ClassInfo& UIImageView::staticClass() {
    static const ClassInfo info("UIImageView", &UIView::staticClass(), createObject<UIImageView>);
    return info;
}

UIImageView::UIImageView() {
    setUserInteractionEnabled(false);
}
UIImageView::~UIImageView() = default;

void UIImageView::setImage(Ref<UIImage> image, bool animated) {
    if (image == image_) return;
    const bool sizeChanged = !image || !image_ || !(image->size() == image_->size());
    image_ = std::move(image);
    drawnImage_ = nullptr;
    if (sizeChanged) invalidateIntrinsicContentSize();
    setNeedsDisplay();
    if (!image_ || !animated || !window()) return;
    const CGFloat shown = alpha();
    setAlpha(0);
    const Ref<UIImageView> self(this);
    animateWithDuration(fadeDuration, [self, shown] { self->setAlpha(shown); });
}

void UIImageView::setIcon(const VectorIcon* icon) {
    if (icon_ == icon) return;
    icon_ = icon;
    setNeedsDisplay();
}

void UIImageView::setIconShare(CGFloat share) {
    share = std::clamp(share, 0.0, 1.0);
    if (iconShare_ == share) return;
    iconShare_ = share;
    setNeedsDisplay();
}

void UIImageView::setBorderGap(CGFloat gap) {
    if (borderGap_ == gap) return;
    borderGap_ = gap;
    setNeedsDisplay();
}

CGSize UIImageView::intrinsicContentSize() const {
    return image_ ? image_->size() : CGSize{UIViewNoIntrinsicMetric, UIViewNoIntrinsicMetric};
}

CGRect UIImageView::contentRect() const {
    if (!(borderGap_ > 0)) return bounds();
    const CGFloat inset = borderGap_ + std::max(1.0, layer().borderWidth());
    return bounds().inset(inset, inset);
}

CGRect UIImageView::placeOf(const UIImage& image) const {
    return placedByContentMode(image.size(), contentRect(), contentMode());
}

UIImage::PixelSize UIImageView::pixelsOf(const UIImage& image) const {
    const CGFloat scale = UIScreen::mainScreen().scale();
    const CGRect place = placeOf(image);
    return pixelsWithin(image, {place.width() * scale, place.height() * scale});
}

const UIImage& UIImageView::imageForPixels(CGSize pixels) {
    const UIImage::PixelSize wanted = pixelsWithin(*image_, pixels);
    if (!drawnImage_ || drawnImage_->pixelWidth() != wanted.width || drawnImage_->pixelHeight() != wanted.height)
        drawnImage_ = image_->resampledTo(wanted.width, wanted.height);
    return *drawnImage_;
}

bool UIImageView::showsPixelBuffer() const {
    const bool isBare = layer().borderWidth() <= 0 && layer().shadow().color.isClear() && backgroundColor().isClear();
    return image_ && isBare && !(borderGap_ > 0);
}

UIView::PixelBuffer UIImageView::pixelBuffer() {
    const CGSize place = placedByContentMode(image_->size(), bounds(), contentMode()).size;
    const CGFloat scale = UIScreen::mainScreen().scale();
    const UIImage& shown = imageForPixels({place.width * scale, place.height * scale});
    return {shown.pixelWidth(), shown.pixelHeight(), shown.pixelWidth(), shown.pixels().data()};
}

void UIImageView::drawRect(Canvas& canvas, const CGRect&) {
    const CGRect area = contentRect();
    if (area.isEmpty()) return;
    if (!image_) {
        const CGFloat margin = (1 - iconShare_) / 2 * std::min(area.width(), area.height());
        if (icon_) icon_->draw(canvas, area.inset(margin, margin), tintColor());
        return;
    }
    const CGRect place = placeOf(*image_);
    const CGFloat inset = area.minX() - bounds().minX();
    const auto radius = [inset](CGFloat own) { return std::max(0.0, own - inset); };
    const CornerRadii& own = layer().cornerRadii();
    canvas.save();
    // Without a gap the view's own clip does; a second one costs as much as the picture.
    if (inset > 0)
        canvas.clipRoundedRect(
            area, {radius(own.topLeft), radius(own.topRight), radius(own.bottomRight), radius(own.bottomLeft)});
    canvas.drawImage(imageForPixels({place.width() * canvas.scale(), place.height() * canvas.scale()}), place);
    canvas.restore();
    if (drawnImage_ != image_ && drawnImage_->byteCost() > keptCopyLength) drawnImage_ = nullptr;
}

}  // namespace flarebox
