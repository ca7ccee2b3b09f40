#pragma once

#include <UIKit/UIView.h>
#include <UIKit/UIViewController.h>

#include <memory>
#include <vector>

namespace flarebox {

class UIWindow;

/// Which view of a window keys and game controllers speak to, and the ring around it. What can be focused is what
/// assistive technology is told of and can be pressed; arrows go to the nearest such view in their direction. Nothing
/// is taken from the game unless it gave the focus to the panel, or something is presented over the window. Main
/// thread.
class UIFocusSystem {
public:
    explicit UIFocusSystem(UIWindow& window);
    ~UIFocusSystem();

    /// The game gives its keys to the panel, and takes them back.
    void take();
    void giveBack();
    /// Whether presses mean the panel.
    bool takesPresses() const;

    /// Null where nothing is focused, or not yet.
    UIView* focusedView() const;
    /// False while a finger or the mouse was used last.
    bool showsRing() const { return showsRing_; }
    /// Whether the player sees it as the focused one.
    bool hasRing(const UIView& view) const { return showsRing_ && focusedView() == &view; }
    /// Moves the focus to a view that can have it, as soon as that is in sight, if keys are in use at all.
    void requestFocus(UIView& view);

    /// Whether the press was used. The first one after a touch shows where the focus is, and moves nothing.
    bool press(UIPressType type);
    /// Goes to the next view in reading order, or the previous one; from the last to the first.
    bool focusNext(bool backwards);
    /// Where a stick is now, from -1 to 1 to the right and down. Whether it is the panel's.
    bool stickMoved(CGPoint deflection);
    /// A finger or the mouse is in use: the ring goes.
    void hideRing();

    /// Once a frame, after layout: follows the focused view, and finds another where it has gone.
    void update(double now);

private:
    class Ring;
    /// One for the window, and one for each controller presented over it.
    struct Level {
        /// Null for the window.
        Weak<UIViewController> owner;
        Weak<UIView> focused, wanted;
        /// Where the focused view was last seen; empty before the first.
        CGRect lastRect;
        /// Since when none is focused.
        double lostSince = -1;
    };

    Level& level();
    std::vector<Ref<UIView>> candidates() const;
    static bool canFocus(UIView& view);
    void focus(UIView& view);
    bool findFocus(bool now);
    UIView* preferredView() const;
    bool pressFocused(UIPressType type);
    bool pressOthers(UIPressType type);
    void move(UIView& from, UIPressType arrow);
    void runStick(double step);
    void placeRing();

    UIWindow& window_;
    std::vector<Level> levels_;
    std::unique_ptr<Ring> ring_;
    CGPoint stick_;
    double lastUpdate_ = 0;
    bool isTaken_ = false, showsRing_ = false;
};

}  // namespace flarebox
