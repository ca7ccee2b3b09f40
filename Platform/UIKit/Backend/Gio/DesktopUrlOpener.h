#pragma once

#include <UIKit/UrlOpener.h>

namespace flarebox {

/// Opens links with the applications that the desktop has for them. Launching happens on a thread of its own, which
/// ends with the host adapter. Main thread.
UrlOpener& desktopUrlOpener();

}  // namespace flarebox
