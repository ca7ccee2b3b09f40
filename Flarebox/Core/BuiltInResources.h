#pragma once

#include <Foundation/NSBundle.h>

#include <span>

namespace flarebox {

/// The files of Flarebox/Resources as they were when the library was built.
std::span<const BuiltInFile> builtInResources();

}  // namespace flarebox
