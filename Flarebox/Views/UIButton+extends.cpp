#include <Flarebox/Views/UIButton+extends.h>

namespace flarebox {
namespace {

void setLook(UIButton& button, bool isEnabled, const UIColor& color) {
    button.setAlpha(1);
    button.setEnabled(isEnabled);
    button.setTitleColor(color, UIControlState::Normal);
    button.setTintColor(color);
    button.layer().setBorderColor(color);
}

}  // namespace

void enable(UIButton& button) {
    setLook(button, true, UIColor::whiteColor());
}
void disable(UIButton& button) {
    setLook(button, false, UIColor::lightGrayColor());
}

}  // namespace flarebox
