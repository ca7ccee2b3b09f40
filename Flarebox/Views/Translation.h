#pragma once

namespace flarebox {

class UIView;

/// Puts the texts that a layout file gave to labels and buttons into the user's language. Called once a view's layout
/// is awake.
void translateTexts(UIView& root);

}  // namespace flarebox
