#include <UIKit/UIGestureRecognizer.h>

namespace flarebox {

const ClassInfo& UIGestureRecognizer::staticClass() {
    static const ClassInfo info("UIGestureRecognizer", &NSObject::staticClass(), nullptr);
    return info;
}

UIGestureRecognizer::UIGestureRecognizer(NSObject* target, std::string_view action)
    : target_(target), action_(action) {}

void UIGestureRecognizer::touchesBegan(UITouch&) {}
void UIGestureRecognizer::touchesMoved(UITouch&) {}
void UIGestureRecognizer::touchesEnded(UITouch&) {}
void UIGestureRecognizer::touchesCancelled(UITouch&) {}

void UIGestureRecognizer::recognize() {
    state_ = State::Recognized;
    if (const Ref<NSObject> target = target_.lock()) target->performSelector(action_, this);
}

}  // namespace flarebox
