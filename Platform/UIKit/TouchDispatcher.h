#pragma once

#include <UIKit/UIHost.h>
#include <UIKit/UIView.h>

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace flarebox {

class UITouch;

/// Hands a host's input to the views and gesture recognisers of one window, and says what is left for the game. A touch
/// belongs from its beginning to its end to whom it began on. Main thread.
class TouchDispatcher {
public:
    explicit TouchDispatcher(UIWindow& window);
    ~TouchDispatcher();

    InputResult down(int pointer, CGPoint point);
    InputResult moved(int pointer, CGPoint point);
    InputResult up(int pointer, CGPoint point);
    void cancelled(int pointer);
    void cancelAll();

    InputResult hovered(CGPoint point);
    void left();
    /// Finds again what lies under a pointer that has not moved.
    void refreshHover();

    InputResult scrolled(CGPoint point, CGFloat dx, CGFloat dy);

private:
    struct Track;
    using TrackRef = std::shared_ptr<Track>;

    TrackRef track(int pointer) const;
    bool isFollowed(const UIGestureRecognizer& recognizer) const;
    TrackRef begin(int pointer, CGPoint point, UIView& view);
    void end(Track& track, bool isCancelled, CGPoint point);
    bool isHovered(const UIView* hit) const;
    void hoverOver(std::vector<Weak<UIView>> views);
    void tellMoved();

    UIWindow& window_;
    /// Null for a touch that is the game's.
    std::map<int, TrackRef> tracks_;
    std::optional<CGPoint> hoverPoint_;
    /// The views under the pointer, the innermost first.
    std::vector<Weak<UIView>> hovered_;
};

}  // namespace flarebox
