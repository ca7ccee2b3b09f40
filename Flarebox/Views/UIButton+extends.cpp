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

void enable(UIButton& button, UIPalette::Shade text) {
    setLook(button, true, UIPalette::current().color(text));
}
void disable(UIButton& button) {
    setLook(button, false, UIPalette::current().color(UIPalette::Shade::DisabledText));
}

}  // namespace flarebox
