#pragma once

#include <Foundation/Export.h>
#include <Foundation/Values.h>

#include <string_view>

namespace flarebox {

/// A text that the kit shows, in the user's language: from the table "Flarebox" of the host's bundle, where it is not
/// there from the kit's own, else the English text itself, which is the key. Docs/Translating.md tells how a host
/// translates the kit. Any thread.
FLAREBOX_EXPORT NSString flareboxText(std::string_view english);

}  // namespace flarebox
