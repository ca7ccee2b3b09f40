#pragma once

#include <UIKit/UIView.h>

namespace flarebox {

/// The soft shadow that the open panel throws onto the game to its right: darkest at the panel's edge.
class PanelShadowView : public UIView {
    FLAREBOX_CLASS(PanelShadowView)
public:
    void drawRect(Canvas& canvas, const CGRect& bounds) override;
    bool drawsContent() const override { return true; }
};

/// The edge into which a list fades, at its left end, or at its right one: into the tint colour, which is the panel's.
///
/// Set by layout files: `atRightEnd`.
class ListFadeView : public UIView {
    FLAREBOX_CLASS(ListFadeView)
public:
    bool atRightEnd() const { return atRightEnd_; }
    void setAtRightEnd(bool atRightEnd);
    void drawRect(Canvas& canvas, const CGRect& bounds) override;
    bool drawsContent() const override { return true; }

private:
    bool atRightEnd_ = false;
};

}  // namespace flarebox
