#pragma once

#include <Foundation/NSError.h>

#include <string_view>

namespace flarebox {

/// Under this key the errors of a transfer carry the text of the address that failed.
inline constexpr const char* NSURLErrorFailingURLStringErrorKey = "NSErrorFailingURLStringKey";

/// An error of NSURLErrorDomain that names the address. Any thread.
Ref<NSError> networkError(int code, std::string_view localizedDescription, std::string_view url);
/// The same with the usual text for that code.
Ref<NSError> networkError(int code, std::string_view url);

}  // namespace flarebox
