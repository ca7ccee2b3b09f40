#pragma once

#include <Foundation/Export.h>
#include <Foundation/NSBundle.h>

namespace flarebox {

/// Identifier of the kit's own bundle, which holds its layout files and its information table.
inline constexpr const char* flareboxBundleIdentifier = "com.flarebox.Flarebox";

/// The kit's own bundle. Its files are part of the library; those that a folder holds under the same names take their
/// place, one by one. The folder is the one that the environment variable FLAREBOX_RESOURCES names, else
/// "Flarebox/Resources" beside the executable; neither need exist. A host may register another one under the identifier
/// beforehand.
FLAREBOX_EXPORT NSBundle& flareboxBundle();

}  // namespace flarebox
