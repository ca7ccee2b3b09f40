#pragma once

#include <Foundation/NSObject.h>

#include <string>
#include <string_view>

namespace flarebox {

class UITouch;

/// Finds a movement in a touch that began in its view or below it. It sees the touch before the view does; the first
/// recogniser of a touch to recognise something has it from then on: the view and all others lose it. Follows one touch
/// at a time. Main thread.
class UIGestureRecognizer : public NSObject {
    FLAREBOX_CLASS(UIGestureRecognizer)
public:
    enum class State : std::uint8_t { Possible, Recognized, Failed };

    /// The target's listed action is performed, with the recogniser as sender, each time the movement is recognised.
    /// The target is held weakly.
    UIGestureRecognizer(NSObject* target, std::string_view action);

    State state() const { return state_; }
    bool isEnabled() const { return enabled_; }
    /// Switched off in the middle of a touch, it sees the rest of that touch.
    void setEnabled(bool enabled) { enabled_ = enabled; }

    // Called by what hands touches out.
    virtual void touchesBegan(UITouch& touch);
    virtual void touchesMoved(UITouch& touch);
    virtual void touchesEnded(UITouch& touch);
    /// The touch ended otherwise, or another recogniser has it now.
    virtual void touchesCancelled(UITouch& touch);
    /// Ready for the next touch.
    void reset() { state_ = State::Possible; }

protected:
    /// Takes the touch over and performs the action.
    void recognize();
    void fail() { state_ = State::Failed; }

private:
    Weak<NSObject> target_;
    std::string action_;
    State state_ = State::Possible;
    bool enabled_ = true;
};

}  // namespace flarebox
