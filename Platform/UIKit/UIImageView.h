#pragma once

#include <UIKit/UIImage.h>
#include <UIKit/UIView.h>
#include <UIKit/VectorIcon.h>

namespace flarebox {

/// Shows a picture, placed by the view's content mode and rounded with its layer. Main thread only.
///
/// Set by layout files: image sign `icon`, `iconShare`, `contentMode`, `borderGap`, `tintColor`, and the layer's corner
/// radius and border.
class UIImageView : public UIView {
    FLAREBOX_CLASS(UIImageView)
public:
    UIImageView();
    ~UIImageView() override;

    /// Null when empty.
    const Ref<UIImage>& image() const { return image_; }
    /// Shows the picture, or nothing for null. Animated, a picture fades in over 0.15 seconds.
    void setImage(Ref<UIImage> image, bool animated = false);

    /// A sign shown in the tint colour while there is no picture; null for none.
    const VectorIcon* icon() const { return icon_; }
    void setIcon(const VectorIcon* icon);
    /// Side of the sign in parts of the view's shorter side, 0 to 1; 1 unless set.
    CGFloat iconShare() const { return iconShare_; }
    void setIconShare(CGFloat share);

    /// Space in points between the layer's border and the picture. Where it is above 0, room for a border of at least
    /// one point is kept also while there is none, so that the picture does not move when the border appears.
    CGFloat borderGap() const { return borderGap_; }
    void setBorderGap(CGFloat gap);

    /// What loads the picture for this view at the moment; held so that a loader can find, replace and forget it. May
    /// be null.
    const Ref<NSObject>& imageTask() const { return imageTask_; }
    void setImageTask(Ref<NSObject> task) { imageTask_ = std::move(task); }

    /// The pixels that the view, as it is now, has for a picture on the screen.
    UIImage::Room room() const;
    /// What makes pictures of the sizes in which they are drawn, off the main thread: it is called while the view is
    /// drawn, at once, and answers with `takeSized` later. Meanwhile the view shows what it has of the picture. Null,
    /// as long as none is set: the view does it itself, where it draws.
    using Sizer = std::function<void(UIImageView& view, const Ref<UIImage>& image, const UIImage::Room& room)>;
    void setSizer(Sizer sizer) { sizer_ = std::move(sizer); }
    /// The picture shown, in the size that was wanted; passed over when another one is shown by now.
    void takeSized(const Ref<UIImage>& image);

    /// The picture's size in points; none without a picture.
    CGSize intrinsicContentSize() const override;
    void drawRect(Canvas& canvas, const CGRect& bounds) override;
    bool drawsContent() const override { return image_ || icon_; }
    /// A picture with nothing around it goes to the compositor as it is, without being drawn first.
    bool showsPixelBuffer() const override;
    PixelBuffer pixelBuffer() override;

private:
    CGRect contentRect() const;
    UIImage::Room roomAtScale(CGFloat scale) const;
    const UIImage& imageFor(const UIImage::Room& room);
    /// What stands for the picture until it has been made in that size; null where that is done at once.
    Ref<UIImage> standInFor(UIImage::PixelSize size) const;

    Ref<UIImage> image_;
    /// A picture at the size in which it was last drawn; the picture itself where that is its own size. Null where it
    /// is not worth its memory. It may be of a former picture, in case that one comes back.
    Ref<UIImage> drawnImage_;
    Sizer sizer_;
    /// What the sizer has been asked for, of the picture shown.
    UIImage::PixelSize awaitedSize_;
    const VectorIcon* icon_ = nullptr;
    Ref<NSObject> imageTask_;
    CGFloat borderGap_ = 0, iconShare_ = 1;
};

}  // namespace flarebox
