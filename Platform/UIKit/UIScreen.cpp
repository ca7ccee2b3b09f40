#include <Foundation/Immortal.h>
#include <UIKit/UIScreen.h>

namespace flarebox {

UIScreen& UIScreen::mainScreen() {
    static detail::Immortal<UIScreen> screen;
    return *screen;
}

}  // namespace flarebox
