#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>
#include <UIKit/CALayer.h>
#include <UIKit/Canvas.h>
#include <UIKit/Geometry.h>
#include <UIKit/NSLayoutConstraint.h>
#include <UIKit/UIAccessibilityTraits.h>
#include <UIKit/UIPress.h>
#include <UIKit/UIViewContentMode.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace flarebox {

class LayoutEngine;
class UIGestureRecognizer;
class UITouch;
class UIWindow;

/// Width or height that a view does not have by itself.
inline constexpr CGFloat UIViewNoIntrinsicMetric = -1;

enum class UILayoutConstraintAxis : std::uint8_t { Horizontal, Vertical };

/// A rectangle of the retained tree: owned by its superview, laid out by constraints or by its frame, drawn into a
/// bitmap of its own only when something about it changed. Main thread only, but for its last reference: a view that
/// another thread lets go is destroyed by the main queue.
class FLAREBOX_EXPORT UIView : public NSObject {
    FLAREBOX_CLASS(UIView)
public:
    UIView();
    ~UIView() override;

    // The tree. Sub-views are drawn in order, the last on top.
    UIView* superview() const { return superview_; }
    std::span<const Ref<UIView>> subviews() const { return subviews_; }
    /// Moves the view here, on top; removes it from where it was.
    void addSubview(UIView& view);
    void insertSubview(UIView& view, std::size_t index);
    virtual void removeFromSuperview();
    void bringSubviewToFront(UIView& view);
    void sendSubviewToBack(UIView& view);
    bool isDescendantOfView(const UIView& ancestor) const;
    /// The window at the root, or null.
    virtual UIWindow* window() const;

    // Geometry. The frame is in the superview's coordinates; the bounds' origin scrolls the content.
    const CGRect& frame() const { return frame_; }
    void setFrame(const CGRect& frame);
    CGRect bounds() const { return {boundsOrigin_, frame_.size}; }
    void setBoundsOrigin(CGPoint origin);
    /// Where the view is shown at this moment of an animation; the frame when none runs.
    CGRect presentationFrame() const;
    /// Between this view's coordinates and another's, or the root's for null. Of the final layout, not of an
    /// animation's moment.
    CGPoint convertPointToView(CGPoint point, const UIView* view) const;
    CGRect convertRectToView(const CGRect& rect, const UIView* view) const;
    /// The rectangle in root coordinates as it is shown now, animations and scrolling included.
    CGRect presentationRectInRoot() const;

    // Look.
    bool isHidden() const { return hidden_; }
    void setHidden(bool hidden);
    CGFloat alpha() const { return alpha_; }
    void setAlpha(CGFloat alpha);
    CGFloat presentationAlpha() const;
    const UIColor& backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(const UIColor& color);
    /// White unless set.
    const UIColor& tintColor() const { return tintColor_; }
    void setTintColor(const UIColor& color);
    bool clipsToBounds() const { return clipsToBounds_; }
    void setClipsToBounds(bool clips);
    UIViewContentMode contentMode() const { return contentMode_; }
    void setContentMode(UIViewContentMode mode);
    CALayer& layer() { return layer_; }
    const CALayer& layer() const { return layer_; }
    /// Not hidden, alpha above 0.01, and so are all its ancestors up to a window.
    bool isVisibleInWindow() const;
    /// A name for messages, tools and assistive technology; layout files set it.
    const std::string& accessibilityIdentifier() const { return identifier_; }
    void setAccessibilityIdentifier(std::string identifier) { identifier_ = std::move(identifier); }

    // Accessibility.
    /// Whether the view is told of as one thing; what lies inside it then is not. Unless set, each control and label is
    /// one, and whatever was given a label.
    bool isAccessibilityElement() const;
    void setIsAccessibilityElement(bool isElement);
    /// The name for people, in their language. Absent unless set; controls and labels have that of their text.
    virtual NSString accessibilityLabel() const;
    void setAccessibilityLabel(const NSString& label);
    /// What the view stands at, where it is something that changes; absent unless set.
    virtual NSString accessibilityValue() const;
    void setAccessibilityValue(const NSString& value);
    /// Those that were set; classes add what they are by nature.
    virtual UIAccessibilityTraits accessibilityTraits() const;
    void setAccessibilityTraits(UIAccessibilityTraits traits);
    /// None unless set.
    UIAccessibilityContainerType accessibilityContainerType() const;
    void setAccessibilityContainerType(UIAccessibilityContainerType type);
    /// A number of this view alone, above 0, as long as it lives.
    std::uint64_t accessibilityNumber() const;
    /// Does what a tap does. False where only a touch can.
    virtual bool accessibilityActivate();
    /// Moves what the view stands at by steps, back where negative. False where there is nothing to move.
    virtual bool accessibilityAdjust(int steps);

    // Constraints.
    /// While true the frame is the view's layout; while false the constraints are. True for a new view.
    bool translatesAutoresizingMaskIntoConstraints() const { return translatesMask_; }
    void setTranslatesAutoresizingMaskIntoConstraints(bool translates);
    /// Those that this view holds, in the order they were added.
    std::span<const Ref<NSLayoutConstraint>> constraints() const { return constraints_; }
    /// The items must be this view or below it, in one tree; otherwise the constraint is refused with a message.
    void addConstraint(const Ref<NSLayoutConstraint>& constraint);
    void addConstraints(std::span<const Ref<NSLayoutConstraint>> constraints);
    void removeConstraint(NSLayoutConstraint& constraint);
    void removeConstraints(std::span<const Ref<NSLayoutConstraint>> constraints);
    /// Whether the constraints leave open where the view lies or how large it is, as of the last layout. False for a
    /// view that is laid out by its frame.
    bool hasAmbiguousLayout() const;
    /// The size that the content asks for, UIViewNoIntrinsicMetric where it asks for none.
    virtual CGSize intrinsicContentSize() const;
    void invalidateIntrinsicContentSize();
    UILayoutPriority contentHuggingPriority(UILayoutConstraintAxis axis) const;
    void setContentHuggingPriority(UILayoutPriority priority, UILayoutConstraintAxis axis);
    UILayoutPriority contentCompressionResistancePriority(UILayoutConstraintAxis axis) const;
    void setContentCompressionResistancePriority(UILayoutPriority priority, UILayoutConstraintAxis axis);

    // Layout and drawing.
    void setNeedsLayout();
    /// Lays out now what needs it: this view's whole tree is solved, this view and what is below it get
    /// `layoutSubviews`.
    void layoutIfNeeded();
    /// Called when the view's size or its sub-views' constraints changed; the frames of constrained sub-views are
    /// already set.
    virtual void layoutSubviews();
    void setNeedsDisplay();
    /// Draws what the view shows between its background and its border. Views that draw nothing need no override and
    /// cost no bitmap.
    virtual void drawRect(Canvas& canvas, const CGRect& bounds);
    /// Whether `drawRect` would draw something; a view that answers false gets a bitmap only for background, border or
    /// shadow.
    virtual bool drawsContent() const { return false; }

    /// A picture in memory: rows from the top, `stride` pixels from one to the next, each pixel premultiplied
    /// 0xAARRGGBB.
    struct PixelBuffer {
        int width = 0, height = 0, stride = 0;
        const std::uint32_t* pixels = nullptr;
    };
    /// Whether the view shows a `pixelBuffer`, over its background colour and under its sub-views, instead of drawing:
    /// a video or a scene.
    virtual bool showsPixelBuffer() const { return false; }
    /// Asked for once after each `setNeedsDisplay` or change of size, when the next frame is drawn. Placed by the
    /// content mode, its corners rounded with the layer; without pixels nothing is shown. The memory has to last until
    /// the next call.
    virtual PixelBuffer pixelBuffer() { return {}; }

    /// How far the edges of the screen that are not to be used reach into the view, in points.
    UIEdgeInsets safeAreaInsets() const;

    // Hooks.
    /// After a layout file made the view and bound all its outlets.
    virtual void awakeFromNib();
    /// For the root of what a layout file made: another palette is in force, and the attributes that follow it have
    /// been set anew. Lays out again.
    virtual void paletteDidChange();
    virtual void didMoveToSuperview();
    virtual void didMoveToWindow();
    /// Another part of the screen is not to be used. The default lays out anew.
    virtual void safeAreaInsetsDidChange();

    /// Kept alive as long as the view: what works on its behalf. May be null.
    void setCompanion(Ref<NSObject> companion) { companion_ = std::move(companion); }

    // Input. Points are in the view's own coordinates, of what is shown at this moment.
    bool isUserInteractionEnabled() const { return userInteractionEnabled_; }
    void setUserInteractionEnabled(bool enabled) { userInteractionEnabled_ = enabled; }
    /// The deepest view under the point that takes input, or null. Hidden, disabled and nearly transparent views take
    /// none.
    virtual UIView* hitTest(CGPoint point);
    virtual bool pointInside(CGPoint point) const;
    /// A touch that began in this view. The default hands it to the superview.
    virtual void touchesBegan(UITouch& touch);
    virtual void touchesMoved(UITouch& touch);
    virtual void touchesEnded(UITouch& touch);
    virtual void touchesCancelled(UITouch& touch);
    /// Wheel or two-finger scrolling over the view, in points. Returns whether it was used; the superview is asked next
    /// otherwise.
    virtual bool scrollWheel(CGPoint point, CGFloat dx, CGFloat dy);
    /// The pointer rests or moves over the view (null touch state), or has left it.
    virtual void pointerEntered() {}
    virtual void pointerExited() {}
    /// The pointer moved over the view or one below it, with no button pressed.
    virtual void pointerMoved() {}
    // Keys and game controllers; see UIFocusSystem.
    /// Whether the view can have the focus, as long as it is in sight. False unless overridden.
    virtual bool canBecomeFocused() const { return false; }
    /// Where below this view the focus goes first; null for what is first in reading order.
    virtual UIView* preferredFocusedView() { return nullptr; }
    /// Where the focus goes from a view below this one, by one of the arrows; null for what lies nearest.
    virtual UIView* viewToFocusAfter(UIView& /*focused*/, UIPressType /*arrow*/) { return nullptr; }
    /// A view below this one got the focus: it has to be brought into sight.
    virtual void revealFocused(UIView& /*focused*/) {}
    /// The radius of the ring around the focused view, in points; that of its own corners unless overridden.
    virtual CGFloat focusRingRadius() const;
    /// Something was pressed while the focus was here or below. Returns whether it was used; the default asks the next
    /// responder.
    virtual bool pressBegan(UIPressType type);
    /// A stick is held off its middle, from -1 to 1 to the right and down, for that many seconds more. As above.
    virtual bool stickHeld(CGPoint deflection, double seconds);
    /// Who is asked next; the superview unless another was set. Not owned.
    UIView* nextResponder() const;
    void setNextResponder(UIView* responder);

    void addGestureRecognizer(const Ref<UIGestureRecognizer>& recognizer);
    std::span<const Ref<UIGestureRecognizer>> gestureRecognizers() const { return gestureRecognizers_; }

    // Animation.
    /// Runs `animations` now, which changes frames, alpha or lays out; the changes are then shown over `duration`
    /// seconds, easing in and out, starting from what is on screen. `completion` runs on the main queue at the end
    /// (false when superseded by a later one). 0 shows them at once.
    static void animateWithDuration(double duration, const std::function<void()>& animations,
                                    std::function<void(bool finished)> completion = nullptr);
    /// Inside an animation: runs `changes` now and shows them at once.
    static void performWithoutAnimation(const std::function<void()>& changes);

protected:
    void dealloc() const override;
    /// What `isAccessibilityElement` answers unless it was set.
    virtual bool isElementByNature() const;

private:
    friend class CALayer;
    friend class LayoutEngine;
    friend class LayerRenderer;
    friend class ViewAnimations;
    friend class NSLayoutConstraint;
    // What the layout engine, the renderer and running animations keep per view.
    struct LayoutState;
    struct RenderState;
    struct AnimationState;
    struct Accessibility;

    Accessibility& makeAccessibility() const;
    UIView& root();
    void attach(UIView& view, std::size_t index);
    void detach();
    void tellMoved(UIWindow* oldWindow);
    void tellWindowChanged();
    /// The picture is out of date, though not this view's own bitmap.
    void markChanged();
    void markLayoutNeededAbove();
    void layoutSubtree();
    LayoutState& layoutState();
    LayoutEngine* treeEngine();
    LayoutEngine& makeTreeEngine();
    void collectConstraints(LayoutEngine& engine);
    void releaseConstraint(NSLayoutConstraint& constraint);
    void dropConstraintsWithOutside();
    bool holdsItemsOf(const NSLayoutConstraint& constraint) const;

    UIView* superview_ = nullptr;
    std::vector<Ref<UIView>> subviews_;
    std::vector<Ref<NSLayoutConstraint>> constraints_;
    std::vector<Ref<UIGestureRecognizer>> gestureRecognizers_;
    Ref<NSObject> companion_;
    CGRect frame_;
    CGPoint boundsOrigin_;
    CALayer layer_{*this};
    UIColor backgroundColor_, tintColor_ = UIColor::whiteColor();
    CGFloat alpha_ = 1;
    std::string identifier_;
    UIViewContentMode contentMode_ = UIViewContentMode::ScaleToFill;
    bool hidden_ = false, clipsToBounds_ = false, translatesMask_ = true, userInteractionEnabled_ = true;
    bool needsLayout_ = true, subtreeNeedsLayout_ = false, needsDisplay_ = true;
    /// The tree's root died, and its engine with it.
    bool lostEngine_ = false;
    /// When anything shown of this view or below it last changed; see LayerRenderer.
    std::uint64_t changeStamp_ = 0;
    // Null until needed.
    std::unique_ptr<LayoutState> layoutState_;
    std::unique_ptr<RenderState> renderState_;
    std::unique_ptr<AnimationState> animationState_;
    mutable std::unique_ptr<Accessibility> accessibility_;
};

}  // namespace flarebox
