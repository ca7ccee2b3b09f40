#pragma once

#include <UIKit/UIButton.h>

namespace flarebox {

/// Lets the button take taps, in white.
void enable(UIButton& button);
/// Stops the button from taking taps. It stays fully opaque and is told by its light grey title, tint and border.
void disable(UIButton& button);

}  // namespace flarebox
