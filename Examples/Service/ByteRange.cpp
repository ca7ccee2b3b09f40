#include "ByteRange.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>

namespace flarebox::examples {
namespace {

struct ByteRange {
    std::uint64_t first = 0;
    std::uint64_t count = 0;
};

std::optional<std::uint64_t> numberFrom(std::string_view text) {
    std::uint64_t number = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(number) : std::nullopt;
}

/// A count of 0 stands for a range beyond the end.
std::optional<ByteRange> rangeFrom(std::string_view text, std::uint64_t size) {
    constexpr std::string_view unit = "bytes=";
    if (!text.starts_with(unit)) return std::nullopt;
    text.remove_prefix(unit.size());
    auto dash = text.find('-');
    if (dash == text.npos) return std::nullopt;

    auto first = numberFrom(text.substr(0, dash)), last = numberFrom(text.substr(dash + 1));
    if (dash == 0) {
        if (!last) return std::nullopt;
        std::uint64_t count = std::min(*last, size);
        return ByteRange{size - count, count};
    }
    bool isOpen = dash + 1 == text.size();
    if (!first || (!last && !isOpen) || (last && *last < *first)) return std::nullopt;
    if (*first >= size) return ByteRange{};
    std::uint64_t end = last && *last < size ? *last + 1 : size;
    return ByteRange{*first, end - *first};
}

}  // namespace

void applyRange(const ReceivedRequest& request, std::string_view etag, Answer& answer) {
    auto text = request.header("Range");
    if (!text || request.method != "GET" || answer.status != 200) return;
    if (request.header("If-Range").value_or(etag) != etag) return;
    std::uint64_t size = answer.body.size();
    auto range = rangeFrom(*text, size);
    if (!range) return;

    std::string total = "/" + std::to_string(size);
    if (range->count == 0) {
        answer.status = 416;
        answer.body.clear();
        answer.headers.emplace_back("Content-Range", "bytes *" + total);
        return;
    }
    std::uint64_t last = range->first + range->count - 1;
    answer.status = 206;
    answer.body = answer.body.substr(range->first, range->count);
    answer.headers.emplace_back("Content-Range",
                                "bytes " + std::to_string(range->first) + "-" + std::to_string(last) + total);
}

}  // namespace flarebox::examples
