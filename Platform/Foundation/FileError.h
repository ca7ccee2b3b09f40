#pragma once

#include <Foundation/NSError.h>

#include <string_view>

namespace flarebox {

enum class FileAccess { Read, Write };

/// The error of NSCocoaErrorDomain for an error number of the system; its description names the path.
Ref<NSError> fileError(int number, FileAccess access, std::string_view path);

}  // namespace flarebox
