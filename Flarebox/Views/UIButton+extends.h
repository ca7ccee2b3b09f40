#pragma once

#include <UIKit/UIButton.h>
#include <UIKit/UIPalette.h>

namespace flarebox {

/// The uniform look of the action buttons: white and ready to press, or light grey and not, unless the palette has
/// other colours. Both are fully opaque.
void enable(UIButton& button, UIPalette::Shade text = UIPalette::Shade::ButtonText);
void disable(UIButton& button);

}  // namespace flarebox
