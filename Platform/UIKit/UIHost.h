#pragma once

#include <Foundation/Export.h>
#include <Foundation/TurnMeter.h>
#include <UIKit/Compositor.h>
#include <UIKit/Geometry.h>
#include <UIKit/UIAccessibility.h>
#include <UIKit/UIPress.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace flarebox {

/// Whether the panel used an input event, or it is the game's.
enum class InputResult : std::uint8_t { Ignored, Consumed };

enum class UIDeviceOrientation : std::int64_t {
    Unknown = 0,
    Portrait = 1,
    PortraitUpsideDown = 2,
    LandscapeLeft = 3,
    LandscapeRight = 4,
    FaceUp = 5,
    FaceDown = 6
};

/// What the player did, as a host adapter told it to the kit: for those that record it.
struct InputEvent {
    /// Which of UIHost's functions was called.
    enum class Kind : std::uint8_t {
        PointerDown,
        PointerMoved,
        PointerUp,
        PointerCancelled,
        Scrolled,
        KeyDown,
        Pressed,
        FocusTaken,
        FocusGivenBack
    };
    Kind kind;  ///< tells which of the following have a meaning
    /// Of a pointer.
    int pointer = 0;
    /// In points of the screen; of a pointer, or where the wheel was turned.
    CGPoint point = {};
    CGFloat dx = 0;  ///< points by which to scroll on, to the right end
    CGFloat dy = 0;  ///< the same, to the bottom
    /// The key's name, for as long as the call lasts.
    std::string_view key = {};
    /// What was pressed on a game controller.
    UIPressType press = UIPressType::UpArrow;
};

/// What a host adapter tells the kit and asks of it: screen, input, the frame tick, drawing. It makes the application's
/// window and, when destroyed, stops every thread of the kit within 200 ms.
///
/// The thread that makes a host is the main thread from then on: calls from another one do nothing, answer Ignored or
/// false, and are named in the log. One host exists at a time: a second one does nothing, and the log says so. Inside a
/// callback of the kit the game may do everything but call `update` and `draw`, which do nothing there, and end the
/// host adapter, which may end in a callback of `update` only.
///
/// An exception passes through these calls where a failed assertion or a callback of the host's raises it. The callback
/// that threw is over, its timer or link comes again; what the call still had to do is done by the next `update`, and a
/// load that did not begin is tried again with the next refresh. A host that catches it may go on.
class FLAREBOX_EXPORT UIHost {
public:
    /// The host in force, or null. Any thread.
    static UIHost* current();
    /// Of the screen, in pixels.
    static constexpr CGFloat longestSide = 16384;
    /// Pixels per point.
    static constexpr CGFloat largestScale = 16;

    /// The screen, as for `setScreen`.
    UIHost(CGSize screenSize, CGFloat scale);
    virtual ~UIHost();
    UIHost(const UIHost&) = delete;
    UIHost& operator=(const UIHost&) = delete;

    /// The screen's size or scale changed; the window follows. Size in points, not less than 0 and at most
    /// `longestSide` pixels to a side; scale in pixels per point, more than 0 and at most `largestScale`. Others count
    /// as the nearest, a scale that is no such number as 1. Does not by itself report a new orientation.
    void setScreen(CGSize size, CGFloat scale);
    /// Of the device, where it knows it; the tab follows at the next turn.
    void setOrientation(UIDeviceOrientation orientation);
    /// Both, for a window, which has no orientation of its own: wide is landscape, tall is portrait. Bounds as
    /// for `setScreen`. Does nothing when size and scale are as they were.
    void resize(CGSize size, CGFloat scale);

    // Input, in points of the screen. A touch that began on the panel belongs to it until it ends, one that began
    // beside it to the game.
    /// `pointer`, 0 or more, tells fingers apart; the mouse is 0.
    InputResult pointerDown(int pointer, CGPoint point);
    /// While it is down.
    InputResult pointerMoved(int pointer, CGPoint point);
    /// What it pressed is performed, if it still lies under it.
    InputResult pointerUp(int pointer, CGPoint point);
    /// Ends it without performing anything: another application came, or its end was lost.
    void pointerCancelled(int pointer);
    /// The mouse moved without a button pressed, or left the window.
    InputResult pointerHovered(CGPoint point);
    void pointerLeft();  ///< nothing is under it any more
    /// Wheel or two-finger scrolling: points by which the content is to move on, to its right end and to its bottom
    /// where positive.
    InputResult scrolled(CGPoint point, CGFloat dx, CGFloat dy);

    // Keys and game controllers. They are the game's until it gives them to the panel; while the panel shows an alert
    // or a video over everything, they are the panel's anyway. Closing the tab, and a touch on the game's own picture,
    // give them back.
    /// Gives keys and game controllers to the panel, which shows a ring around what they speak to: to be called with
    /// the key that the game has for it, after opening the tab for example.
    void takeFocus();
    void giveBackFocus();  ///< they are the game's again, and the ring goes
    /// Whether they are the panel's now.
    bool hasFocus() const;
    /// Whether the panel shows the ring around what they speak to. It goes with a touch or a click, and comes back with
    /// the next press.
    bool showsFocusRing() const;
    /// A button of a game controller.
    InputResult press(UIPressType type);
    /// A key by its name, in lower case. The arrows "left", "right", "up" and "down", "return", "keypad enter",
    /// "space", "escape", "pageup" and "pagedown" are presses; "tab" and "backtab" go on to the next and the previous
    /// element. A video that fills the screen is moved on by "left" and "right", and "m" mutes it.
    InputResult keyDown(std::string_view name);
    /// Tells `observe` of all input from now on, each time after the kit has dealt with it, and with what it answered;
    /// null: nobody. Movements without a button, those of the right stick, and what assistive technology does are left
    /// out. Where the focus goes by
    /// itself, as with a tab that is removed, only what removed it is told.
    void setInputObserver(std::function<void(const InputEvent& event, InputResult result)> observe);
    /// Where the right stick is, from -1 to 1 to the right and down, whenever it moves: it turns models and scrolls.
    InputResult stickMoved(CGPoint deflection);

    // What the player's system or the game's settings say.
    /// How many times as large as on a phone everything is to be shown, 1 to 3, for a television at the other end of
    /// the room. Others count as the nearest. The panel grows until it fills the height of the screen.
    void setInterfaceScale(CGFloat scale);
    /// What a notch or a television's edge covers, in points: text and controls keep away from it. Less than 0 counts
    /// as 0.
    void setSafeAreaInsets(const UIEdgeInsets& insets);
    /// Nothing slides, fades or turns by itself any more: what would be shown over time is shown at once.
    void setReduceMotion(bool reduce);
    /// What can be told of the panel at this moment, in reading order.
    std::vector<UIAccessibilityElement> accessibilityElements();
    /// Does with an element what a tap on it does. False where nothing can be done with it.
    bool accessibilityActivate(UIView& element);
    /// Moves what an adjustable element stands at by steps, back where negative. False where nothing can be moved.
    bool accessibilityAdjust(UIView& element, int steps);

    /// The one call a frame: runs what is due on the main queue within `budget` seconds of real time, advances
    /// animations, lays out, and finds again what lies under a still pointer. What the budget has no room for is left
    /// to the next frame, in order; one piece of work runs in every frame, however small the budget.
    void update(double budget = 0.004);
    /// Whether the picture differs from the one last drawn.
    bool needsDisplay() const;
    /// Draws the panel over what the host has drawn. The host calls it inside its own frame.
    void draw(Compositor& compositor);
    /// Gives back every texture made with that compositor; call before it goes away.
    void releaseTextures(Compositor& compositor);

    /// Seconds for which one call of the above may hold the main thread; the kit's log tells at info level of one that
    /// takes longer, and what took the time. 0, the default: nothing is measured, which costs nothing. Infinity:
    /// everything is measured for `longestTurn`, nothing logged.
    void setTurnBudget(double seconds);
    /// The longest call since the last reset, of those that were measured.
    const TurnMeter::Turn& longestTurn() const;
    void resetLongestTurn();  ///< begins the search for the longest call anew

private:
    struct State;
    class Call;
    /// From the host's points to those of the screen.
    static CGPoint scaled(CGPoint point);
    void applyScreen();
    /// Null in a host that was made beside another one.
    std::unique_ptr<State> state_;
};

}  // namespace flarebox
