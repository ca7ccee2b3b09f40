#pragma once

#include <UIKit/UIControl.h>
#include <UIKit/UIImage.h>
#include <UIKit/UILabel.h>
#include <UIKit/VectorIcon.h>

#include <array>
#include <optional>

namespace flarebox {

/// Where a button's sign or picture stands when it has a title too.
enum class UIButtonIconPlacement : std::uint8_t { Leading, Above };
enum class UIButtonBarEdge : std::uint8_t { None, Top, Left, Bottom, Right };

/// A control with a title, a sign or a picture, or both, in colours for each of its states. While pressed it is 8 %
/// darker and drawn at 0.98 of its size. The border, when it has one, is its layer's. Main thread only.
///
/// What is not set for a state is that of the normal state; of several states at once disabled counts before
/// highlighted, and that before selected.
///
/// Set by layout files, those with [S] also for a state: `title` [S], `accessibilityLabel` [S], `titleColor` [S],
/// `tintColor` [S], `icon` [S], `backgroundColor` [S], `font` (of the title label), `adjustsFontSizeToFitWidth` (same),
/// `iconPlacement`, `iconSize`, `iconSpacing`, `titleRunsDownwards`, `contentInsets`, `designHeight`,
/// `selectionBarEdge`, and what UIControl lists.
class UIButton : public UIControl {
    FLAREBOX_CLASS(UIButton)
public:
    UIButton();
    ~UIButton() override;

    NSString titleForState(UIControlState state) const;
    void setTitle(const NSString& title, UIControlState state = UIControlState::Normal);
    /// The title of the present state.
    NSString currentTitle() const { return titleForState(state()); }
    /// White unless set.
    UIColor titleColorForState(UIControlState state) const;
    void setTitleColor(const UIColor& color, UIControlState state = UIControlState::Normal);
    /// Colour of the sign; in a state for which it is set it is the title's colour too, unless that is set for the
    /// state itself.
    UIColor tintColorForState(UIControlState state) const;
    using UIView::setTintColor;
    void setTintColor(const UIColor& color, UIControlState state);
    /// A sign, in the tint colour; null for none.
    const VectorIcon* iconForState(UIControlState state) const;
    void setIcon(const VectorIcon* icon, UIControlState state = UIControlState::Normal);
    /// A picture, in its own colours and shape, as large as a sign; counts before one. Null for none.
    Ref<UIImage> imageForState(UIControlState state) const;
    void setImage(Ref<UIImage> image, UIControlState state = UIControlState::Normal);
    /// Drawn over the view's own background colour.
    UIColor backgroundColorForState(UIControlState state) const;
    using UIView::setBackgroundColor;
    void setBackgroundColor(const UIColor& color, UIControlState state);

    /// The name of a state, for people who do not see the button; that of its title where there is none.
    NSString accessibilityLabel() const override;
    using UIControl::setAccessibilityLabel;
    void setAccessibilityLabel(const NSString& label, UIControlState state);
    /// That set for the state itself; absent where there is none.
    NSString accessibilityLabelForState(UIControlState state) const;
    UIAccessibilityTraits accessibilityTraits() const override;

    /// Font and fitting of the title. Its text and colour are those of the button's state.
    UILabel& titleLabel() { return *titleLabel_; }
    const UILabel& titleLabel() const { return *titleLabel_; }

    UIButtonIconPlacement iconPlacement() const { return iconPlacement_; }
    void setIconPlacement(UIButtonIconPlacement placement);
    /// Side of the sign in points, 20 unless set, and its distance from the title, 6 unless set.
    CGFloat iconSize() const { return iconSize_; }
    void setIconSize(CGFloat size);
    CGFloat iconSpacing() const { return iconSpacing_; }
    void setIconSpacing(CGFloat spacing);
    /// Whether the title is turned by a quarter, to be read from the top of a narrow button to its bottom.
    bool titleRunsDownwards() const { return titleRunsDownwards_; }
    void setTitleRunsDownwards(bool runsDownwards);
    const UIEdgeInsets& contentInsets() const { return contentInsets_; }
    void setContentInsets(const UIEdgeInsets& insets);
    /// The height for which sizes, distances and font are given; a button of another height scales what it shows. 0,
    /// the default, leaves everything at its size.
    CGFloat designHeight() const { return designHeight_; }
    void setDesignHeight(CGFloat height);
    /// The edge at which a selected button shows a bar of 2 points in its tint colour.
    UIButtonBarEdge selectionBarEdge() const { return selectionBarEdge_; }
    void setSelectionBarEdge(UIButtonBarEdge edge);

    CGSize intrinsicContentSize() const override;
    void drawRect(Canvas& canvas, const CGRect& bounds) override;
    bool drawsContent() const override { return true; }

protected:
    void stateChanged() override;

private:
    class TitleLabel;

    /// Values by state: normal, highlighted, disabled, selected.
    template <class T>
    class PerState {
    public:
        void set(UIControlState state, T value) { values_[indexOf(state)] = std::move(value); }
        /// That of the state itself, before any falling back to the normal one.
        const std::optional<T>& own(UIControlState state) const;
        const std::optional<T>& get(UIControlState state) const;

    private:
        static std::size_t indexOf(UIControlState state);
        std::array<std::optional<T>, 4> values_;
    };

    template <class T>
    void change(T& field, const T& value);
    void showState();
    CGFloat contentScale(const CGRect& bounds) const;
    /// The room that the title takes, turned or not.
    CGSize titleExtent() const;
    bool hasIcon() const { return iconForState(state()) || imageForState(state()); }
    void drawBackground(Canvas& canvas, const CGRect& bounds) const;
    void drawContent(Canvas& canvas, const CGRect& bounds) const;
    void drawTitle(Canvas& canvas, const CGRect& rect, CGFloat scale) const;
    void drawIcon(Canvas& canvas, const CGRect& rect) const;
    void drawBar(Canvas& canvas, const CGRect& bounds) const;
    UIColor shaded(const UIColor& color) const;

    PerState<NSString> titles_, labels_;
    PerState<UIColor> titleColors_, tintColors_, backgroundColors_;
    PerState<const VectorIcon*> icons_;
    PerState<Ref<UIImage>> images_;
    Ref<UILabel> titleLabel_;
    UIEdgeInsets contentInsets_;
    CGFloat iconSize_ = 20, iconSpacing_ = 6, designHeight_ = 0;
    UIButtonIconPlacement iconPlacement_ = UIButtonIconPlacement::Leading;
    UIButtonBarEdge selectionBarEdge_ = UIButtonBarEdge::None;
    bool titleRunsDownwards_ = false;
};

}  // namespace flarebox
