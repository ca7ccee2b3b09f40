#include <UIKit/AlertView.h>
#include <UIKit/UIAlertController.h>

#include <algorithm>
#include <utility>

namespace flarebox {

const ClassInfo& UIAlertAction::staticClass() {
    static const ClassInfo info("UIAlertAction", &NSObject::staticClass(), createObject<UIAlertAction>);
    return info;
}

Ref<UIAlertAction> UIAlertAction::actionWithTitle(const NSString& title, UIAlertActionStyle style, Handler handler) {
    auto action = make<UIAlertAction>();
    action->title_ = title;
    action->style_ = style;
    action->handler_ = std::move(handler);
    return action;
}

const ClassInfo& UIAlertController::staticClass() {
    static const ClassInfo info("UIAlertController", &UIViewController::staticClass(), createObject<UIAlertController>);
    return info;
}

Ref<UIAlertController> UIAlertController::alertControllerWithTitle(const NSString& title, const NSString& message,
                                                                   UIAlertControllerStyle preferredStyle) {
    auto alert = make<UIAlertController>();
    alert->title_ = title;
    alert->message_ = message;
    alert->preferredStyle_ = preferredStyle;
    return alert;
}

Ref<UIView> UIAlertController::loadView() {
    return make<AlertView>(*this);
}

void UIAlertController::viewWillAppear(bool animated) {
    UIViewController::viewWillAppear(animated);
    chosen_ = false;
}

bool UIAlertController::keyDown(std::string_view name) {
    const bool isEscape = name == "escape";
    if (!isEscape && name != "return") return false;
    const auto wanted = isEscape ? UIAlertActionStyle::Cancel : UIAlertActionStyle::Default;
    const auto found = std::ranges::find(actions_, wanted, [](const auto& action) { return action->style(); });
    if (found != actions_.end())
        choose(**found);
    else if (actions_.size() == 1)
        choose(*actions_.front());
    return true;
}

void UIAlertController::choose(UIAlertAction& action) {
    if (std::exchange(chosen_, true)) return;
    dismissViewController(true, [chosen = Ref<UIAlertAction>(&action)] {
        if (chosen->handler_) chosen->handler_(*chosen);
    });
}

}  // namespace flarebox
