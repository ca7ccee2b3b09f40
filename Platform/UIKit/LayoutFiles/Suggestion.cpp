#include <UIKit/LayoutFiles/Suggestion.h>

#include <algorithm>
#include <cctype>
#include <numeric>
#include <vector>

namespace flarebox::layout {
namespace {

/// Beyond this many a list helps nobody.
constexpr std::size_t mostListed = 24;

bool isSameLetter(char one, char other) {
    return std::tolower(static_cast<unsigned char>(one)) == std::tolower(static_cast<unsigned char>(other));
}

/// How many letters have to be put in, left out, replaced, or exchanged with their neighbour, whatever their case.
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> beforeLast, last(other.size() + 1), row(other.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 0; i < one.size(); ++i) {
        row[0] = i + 1;
        for (std::size_t j = 0; j < other.size(); ++j) {
            row[j + 1] = std::min({last[j] + !isSameLetter(one[i], other[j]), last[j + 1] + 1, row[j] + 1});
            const bool isExchanged =
                i > 0 && j > 0 && isSameLetter(one[i], other[j - 1]) && isSameLetter(one[i - 1], other[j]);
            if (isExchanged) row[j + 1] = std::min(row[j + 1], beforeLast[j - 1] + 1);
        }
        beforeLast = last;
        last = row;
    }
    return last.back();
}

}  // namespace

std::string inQuotes(std::string_view text) {
    return '"' + std::string(text) + '"';
}

std::string suggestionFor(std::string_view word, std::span<const std::string_view> known) {
    constexpr std::size_t longestWord = 64;
    if (known.empty()) return {};
    const auto far = [&](std::string_view each) { return distance(word.substr(0, longestWord), each); };
    const auto nearest = std::ranges::min_element(known, {}, far);
    if (far(*nearest) <= std::max<std::size_t>(1, nearest->size() / 3))
        return "; did you mean " + inQuotes(*nearest) + "?";
    if (known.size() > mostListed) return {};
    std::string list;
    for (std::string_view each : known) list += (list.empty() ? "" : ", ") + inQuotes(each);
    return "; known are " + list;
}

}  // namespace flarebox::layout
