#include <Flarebox/Views/UIButton+extends.h>

namespace flarebox {
namespace {

void setAvailable(UIButton& button, bool available) {
    const UIColor color = available ? UIColor::whiteColor() : UIColor::lightGrayColor();
    button.setAlpha(1);
    button.setEnabled(available);
    button.setTitleColor(color, UIControlState::Normal);
    button.setTintColor(color);
    button.layer().setBorderColor(color);
}

}  // namespace

void enable(UIButton& button) { setAvailable(button, true); }

void disable(UIButton& button) { setAvailable(button, false); }

}  // namespace flarebox
