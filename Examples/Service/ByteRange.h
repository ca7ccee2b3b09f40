#pragma once

#include "Answer.h"
#include "ReceivedRequest.h"

namespace flarebox::examples {

/// Cuts the whole file in `answer`, which has the ETag, down to the one range that the request asks for: 206, or 416
/// for a range beyond the end. Several ranges, ones that are not understood and ones for another version of the file
/// leave it whole, as HTTP allows.
void applyRange(const ReceivedRequest& request, std::string_view etag, Answer& answer);

}  // namespace flarebox::examples
