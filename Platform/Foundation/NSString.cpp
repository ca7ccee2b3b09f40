#include <Foundation/Storage.h>
#include <Foundation/Values.h>

#include <charconv>
#include <cmath>
#include <limits>

namespace flarebox {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The text from its number on: without blanks and a plus sign. Empty when no number can follow.
std::string_view numberAtStart(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
    if (start == text.npos) return {};
    text.remove_prefix(start);
    if (text.front() == '+') {
        text.remove_prefix(1);
        if (text.starts_with('-')) return {};
    }
    return text;
}

/// What the digits mean that are beyond the range: too small to tell from zero, or too large.
template <class Floating>
Floating beyondRange(std::string_view digits) {
    const bool isNegative = digits.starts_with('-');
    if (isNegative) digits.remove_prefix(1);
    const std::size_t exponent = digits.find_first_of("eE");
    const bool isTiny = exponent == digits.npos ? digits.starts_with('0') || digits.starts_with('.')
                                                : digits.substr(exponent + 1).starts_with('-');
    const Floating magnitude = isTiny ? 0 : std::numeric_limits<Floating>::infinity();
    return isNegative ? -magnitude : magnitude;
}

template <class Floating>
Floating leadingFloating(std::string_view text) {
    const std::string_view number = numberAtStart(text);
    // What is read must start with digits: the names of infinity and of not-a-number are no numbers here.
    const std::size_t first = number.starts_with('-') ? 1 : 0;
    if (first >= number.size() || !(isDigit(number[first]) || number[first] == '.')) return 0;
    Floating result = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), result);
    if (error != std::errc::result_out_of_range) return result;
    return beyondRange<Floating>({number.data(), end});
}

}  // namespace

NSString NSString::stringWithConstant(std::string_view text) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max()) return NSString(text);
    return NSString(detail::ValueAccess::constant(text), Checked{});
}

std::string_view NSString::text() const noexcept {
    return *this ? detail::ValueAccess::text(*this) : std::string_view();
}

double NSString::doubleValue() const noexcept {
    return leadingFloating<double>(text());
}

float NSString::floatValue() const noexcept {
    return leadingFloating<float>(text());
}

std::int64_t NSString::integerValue() const noexcept {
    const std::string_view number = numberAtStart(text());
    std::int64_t result = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), result);
    if (error != std::errc::result_out_of_range) return result;
    using Limits = std::numeric_limits<std::int64_t>;
    return number.starts_with('-') ? Limits::min() : Limits::max();
}

}  // namespace flarebox
