#pragma once

#include <Foundation/Values.h>

namespace flarebox {

class FXAssetInfo;
class UIView;

/// Puts the texts that a layout file gave to labels and buttons, and the names that it gave to views, into the user's
/// language. Called once a view's layout is awake.
void translateTexts(UIView& root);

/// What an asset is called by who cannot see it: its title, or the word for any product.
NSString spokenTitle(const FXAssetInfo& asset);

}  // namespace flarebox
