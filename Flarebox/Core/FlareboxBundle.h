#pragma once

#include <Foundation/NSBundle.h>

namespace flarebox {

/// Identifier of the kit's own bundle, which holds its layout files and its information table.
inline constexpr const char* flareboxBundleIdentifier = "com.flarebox.Flarebox";

/// The kit's own bundle. Its folder is the one that the environment variable FLAREBOX_RESOURCES names, else
/// "Flarebox/Resources" beside the executable, else the one the kit was built from. A host may register another one
/// under the identifier beforehand.
NSBundle& flareboxBundle();

}  // namespace flarebox
