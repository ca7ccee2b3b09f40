#include <UIKit/UIImageView.h>
#include <UIKit/UIScreen.h>

#include <algorithm>

namespace flarebox {
namespace {

constexpr double fadeDuration = 0.15;
/// Pixels up to which the copy that was drawn is kept for the next time. Large ones are drawn again too rarely.
constexpr std::size_t keptCopyPixels = std::size_t{1} << 18;

/// Pixels that are averaged to a smaller size in less time than it takes to draw the view twice.
constexpr std::size_t quicklySizedPixels = std::size_t{1} << 15;

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
    awaitedSize_ = {};
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

UIImage::Room UIImageView::roomAtScale(CGFloat scale) const {
    const CGSize size = contentRect().size;
    return {.pixels = {std::max(0.0, size.width) * scale, std::max(0.0, size.height) * scale}, .mode = contentMode()};
}

UIImage::Room UIImageView::room() const {
    return roomAtScale(UIScreen::mainScreen().scale());
}

Ref<UIImage> UIImageView::standInFor(UIImage::PixelSize size) const {
    if (!sizer_) return nullptr;
    if (!image_->pixelSize().holds(size)) return image_;
    return drawnImage_ && image_->pixels().size() > quicklySizedPixels ? drawnImage_ : nullptr;
}

const UIImage& UIImageView::imageFor(const UIImage::Room& room) {
    const UIImage::PixelSize wanted = room.sizeOf(image_->wholeSize());
    if (drawnImage_ && !drawnImage_->isSamePictureAs(*image_)) drawnImage_ = nullptr;
    if (drawnImage_ && drawnImage_->pixelSize() == wanted) return *drawnImage_;
    if (image_->pixelSize() != wanted) {
        if (const Ref<UIImage> standIn = standInFor(wanted)) {
            if (awaitedSize_ != wanted) sizer_(*this, image_, room);
            awaitedSize_ = wanted;
            return *standIn;
        }
    }
    drawnImage_ = image_->resampledTo(wanted);
    return *drawnImage_;
}

void UIImageView::takeSized(const Ref<UIImage>& image) {
    if (!image || !image_ || image == image_ || !image->isSamePictureAs(*image_)) return;
    if (image->pixelSize().holds(image_->pixelSize())) image_ = image;
    drawnImage_ = image;
    setNeedsDisplay();
}

bool UIImageView::showsPixelBuffer() const {
    const bool isBare = layer().borderWidth() <= 0 && layer().shadow().color.isClear() && backgroundColor().isClear();
    return image_ && isBare && !(borderGap_ > 0);
}

UIView::PixelBuffer UIImageView::pixelBuffer() {
    const UIImage& shown = imageFor(room());
    return {shown.pixelWidth(), shown.pixelHeight(), shown.pixelWidth(), shown.pixels().data()};
}

void UIImageView::drawRect(Canvas& canvas, const CGRect&) {
    const CGRect area = contentRect();
    if (area.isEmpty()) return;
    if (!image_) {
        drawnImage_ = nullptr;
        const CGFloat margin = (1 - iconShare_) / 2 * std::min(area.width(), area.height());
        if (icon_) icon_->draw(canvas, area.inset(margin, margin), tintColor());
        return;
    }
    const CGRect place = placedByContentMode(image_->size(), area, contentMode());
    const CGFloat inset = area.minX() - bounds().minX();
    const auto radius = [inset](CGFloat own) { return std::max(0.0, own - inset); };
    const CornerRadii& own = layer().cornerRadii();
    canvas.save();
    // Without a gap the view's own clip does; a second one costs as much as the picture.
    if (inset > 0)
        canvas.clipRoundedRect(
            area, {radius(own.topLeft), radius(own.topRight), radius(own.bottomRight), radius(own.bottomLeft)});
    canvas.drawImage(imageFor(roomAtScale(canvas.scale())), place);
    canvas.restore();
    if (drawnImage_ && drawnImage_ != image_ && drawnImage_->pixels().size() > keptCopyPixels) drawnImage_ = nullptr;
}

}  // namespace flarebox
