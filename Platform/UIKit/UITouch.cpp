#include <UIKit/UITouch.h>
#include <UIKit/UIView.h>

namespace flarebox {

const ClassInfo& UITouch::staticClass() {
    static const ClassInfo info("UITouch", &NSObject::staticClass(), nullptr);
    return info;
}

UITouch::UITouch(int pointer, UIView& view, CGPoint point, double timestamp)
    : view_(&view), point_(point), previousPoint_(point), timestamp_(timestamp), pointer_(pointer) {}

UIView* UITouch::view() const {
    return view_.get();
}

CGPoint UITouch::locationInView(const UIView* view) const {
    return view ? convertPointFromScreen(point_, *view) : point_;
}

CGPoint UITouch::previousLocationInView(const UIView* view) const {
    return view ? convertPointFromScreen(previousPoint_, *view) : previousPoint_;
}

void UITouch::update(UITouchPhase phase, CGPoint point, double timestamp) {
    phase_ = phase;
    previousPoint_ = point_;
    point_ = point;
    timestamp_ = timestamp;
}

CGPoint convertPointFromScreen(CGPoint point, const UIView& view) {
    return point - view.presentationRectInRoot().origin + view.bounds().origin;
}

}  // namespace flarebox
