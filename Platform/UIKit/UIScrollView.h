#pragma once

#include <Foundation/Export.h>
#include <UIKit/CADisplayLink.h>
#include <UIKit/ScrollMotion.h>
#include <UIKit/UIView.h>
#include <UIKit/WeakDelegate.h>

#include <memory>

namespace flarebox {

class UIScrollView;
class UITouch;

/// Told about scrolling. All operations are optional.
class FLAREBOX_EXPORT UIScrollViewDelegate {
public:
    virtual ~UIScrollViewDelegate() = default;
    /// The content offset changed, for whatever reason.
    virtual void scrollViewDidScroll(UIScrollView&) {}
    virtual void scrollViewWillBeginDragging(UIScrollView&) {}
    /// The finger was lifted; `willDecelerate` tells whether the content moves on.
    virtual void scrollViewDidEndDragging(UIScrollView&, bool /*willDecelerate*/) {}
    virtual void scrollViewWillBeginDecelerating(UIScrollView&) {}
    virtual void scrollViewDidEndDecelerating(UIScrollView&) {}
};

/// A window onto content larger than itself, moved by finger, mouse wheel or code. The content offset is the bounds'
/// origin. Main thread.
class FLAREBOX_EXPORT UIScrollView : public UIView {
    FLAREBOX_CLASS(UIScrollView)
public:
    UIScrollView();
    ~UIScrollView() override;

    const CGSize& contentSize() const { return contentSize_; }
    /// Leaves the offset as it is.
    void setContentSize(CGSize size) { contentSize_ = size; }
    CGPoint contentOffset() const { return bounds().origin; }
    /// Moves the content at once, or over 0.3 seconds. An offset beyond the content's ends is kept as it is set. Ends
    /// any movement under way.
    void setContentOffset(CGPoint offset, bool animated = false);

    bool isScrollEnabled() const { return scrollEnabled_; }
    void setScrollEnabled(bool enabled) { scrollEnabled_ = enabled; }
    /// Whether the content may be dragged a little beyond its ends even where all of it is visible.
    void setAlwaysBounceHorizontal(bool bounces) { alwaysBounceHorizontal_ = bounces; }
    void setAlwaysBounceVertical(bool bounces) { alwaysBounceVertical_ = bounces; }
    /// A finger moves the content.
    bool isDragging() const { return dragging_; }
    /// The content moves on after a finger has let go.
    bool isDecelerating() const { return moving_ == Moving::Decelerating; }

    UIScrollViewDelegate* delegate() const { return delegate_.get(); }
    /// Not owned.
    void setDelegate(UIScrollViewDelegate* delegate) { delegate_ = delegate; }

    bool scrollWheel(CGPoint point, CGFloat dx, CGFloat dy) override;
    /// Moves the content by what a stick held for so long comes to; false where it goes no further.
    bool scrollByStick(CGPoint deflection, double seconds);

protected:
    /// After every change of the offset, before the delegate is told.
    virtual void contentOffsetDidChange() {}
    /// Offsets at which the content's ends lie at the view's edges.
    CGPoint maximumContentOffset() const;

private:
    class PanRecognizer;
    enum class Moving : std::uint8_t { Not, Decelerating, ToOffset, ByWheel };

    bool scrollsHorizontally() const;
    bool scrollsVertically() const;
    void beginDragging(CGPoint location);
    void drag(CGPoint location);
    void endDragging(CGPoint velocity);
    void moveTo(CGPoint offset);
    void start(Moving kind);
    void advance(double now);
    void endMoving();

    CGSize contentSize_;
    WeakDelegate<UIScrollViewDelegate> delegate_;
    Ref<PanRecognizer> pan_;
    /// Where finger and content were when the drag began; the content's place not yet shortened beyond the ends.
    CGPoint dragStart_, offsetAtDragStart_;
    ScrollMotion horizontal_, vertical_;
    double motionStart_ = 0, movedAt_ = 0;
    std::unique_ptr<CADisplayLink> displayLink_;
    Moving moving_ = Moving::Not;
    bool scrollEnabled_ = true, alwaysBounceHorizontal_ = false, alwaysBounceVertical_ = false, dragging_ = false;
};

}  // namespace flarebox
