#pragma once

#include "Answer.h"
#include "ReceivedRequest.h"
#include "Validation.h"

#include <atomic>
#include <string_view>

namespace flarebox::examples {

class Media;

/// Answers the four operations; takes it for granted that the request was found to be right.
class Operations {
public:
    Answer answer(const ReceivedRequest& request, Operation::Name name, std::string_view baseURL, const Media& media);

private:
    Answer createSession(const ReceivedRequest& request);

    std::atomic<int> sessions_{0};
};

}  // namespace flarebox::examples
