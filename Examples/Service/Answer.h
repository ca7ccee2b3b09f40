#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flarebox::examples {

struct Answer {
    int status = 200;
    std::string body;
    std::string contentType = "application/json";
    std::vector<std::pair<std::string, std::string>> headers = {};
};

/// `{"error": reason}` with that status.
Answer errorAnswer(int status, std::string_view reason);

}  // namespace flarebox::examples
