#pragma once

#include <Foundation/Export.h>
#include <UIKit/UIView.h>

#include <array>
#include <cstddef>

namespace flarebox {

class UIWindow;

/// Shows how long the last frames of a game took, and how much of that was the kit's: a bar a frame, and a line at the
/// sixtieth of a second that a frame has. Takes no input. Main thread.
class FLAREBOX_EXPORT FrameTimeGraph : public UIView {
    FLAREBOX_CLASS(FrameTimeGraph)
public:
    static constexpr std::size_t frameCount = 120;  ///< that are shown

    FrameTimeGraph();

    /// Seconds of the whole frame, and of what the kit used of it: `update` and `draw`.
    void addFrame(double whole, double kit);
    /// In seconds, of the frames shown; 0 before the first.
    double longestFrame() const;
    double longestShareOfKit() const;  ///< the same of the kit alone

    /// In the lower right corner.
    void showInWindow(UIWindow& window);
    void removeFromSuperview() override;                           ///< ends it
    void drawRect(Canvas& canvas, const CGRect& bounds) override;  ///< the bars
    bool drawsContent() const override { return true; }            ///< always

private:
    void place();
    struct Frame {
        double whole = 0, kit = 0;
    };
    /// A ring: the oldest is at `next_`.
    std::array<Frame, frameCount> frames_;
    std::size_t next_ = 0;
};

}  // namespace flarebox
