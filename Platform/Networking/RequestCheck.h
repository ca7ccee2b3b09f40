#pragma once

#include <Foundation/NSError.h>
#include <Foundation/NSURLRequest.h>

namespace flarebox {

/// Why a request cannot be sent as it is: no address, a scheme other than http and https, no host, or a method or
/// header field that could smuggle something else onto the wire. Null when it can.
Ref<NSError> reasonNotToSend(const NSURLRequest& request);

}  // namespace flarebox
