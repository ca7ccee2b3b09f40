#pragma once

#include <UIKit/UIButton.h>

namespace flarebox {

/// The uniform look of the action buttons: white and ready to press, or light grey and not. Both are fully opaque.
void enable(UIButton& button);
void disable(UIButton& button);

}  // namespace flarebox
