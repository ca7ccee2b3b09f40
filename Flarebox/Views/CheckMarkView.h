#pragma once

#include <UIKit/CADisplayLink.h>
#include <UIKit/UIView.h>

#include <memory>

namespace flarebox {

/// A check mark in the tint colour that draws itself, within a quarter of a second, as if by hand. Main thread.
class CheckMarkView : public UIView {
    FLAREBOX_CLASS(CheckMarkView)
public:
    CheckMarkView();
    ~CheckMarkView() override;

    /// Starts from nothing.
    void draw();

    void drawRect(Canvas& canvas, const CGRect& bounds) override;
    bool drawsContent() const override { return true; }

private:
    void advance(double now);

    std::unique_ptr<CADisplayLink> link_;
    double startTime_ = 0;
    /// 0 to 1.
    double progress_ = 1;
};

}  // namespace flarebox
