#pragma once

#include <Foundation/NSError.h>

#include <curl/curl.h>

#include <string_view>

namespace flarebox {

/// The platform's error for a transfer of `handle` that ended with `code`.
Ref<NSError> errorOfTransfer(CURLcode code, CURL* handle, std::string_view url);

}  // namespace flarebox
