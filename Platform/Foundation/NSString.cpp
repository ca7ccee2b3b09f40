#include <Foundation/Storage.h>
#include <Foundation/Values.h>

#include <algorithm>
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

/// The power of ten of the first digit that is not 0, for digits with or without a point and an exponent.
double powerOfTen(std::string_view digits) {
    const std::size_t mark = std::min(digits.find_first_of("eE"), digits.size());
    const std::string_view mantissa = digits.substr(0, mark);
    const auto place = [](std::size_t index) { return static_cast<double>(index); };
    const double point = place(std::min(mantissa.find('.'), mantissa.size()));
    const double first = place(std::min(mantissa.find_first_of("123456789"), mantissa.size()));
    // An exponent too long for any number is as good as the largest one.
    std::int64_t exponent = 0;
    std::string_view text = digits.substr(std::min(mark + 1, digits.size()));
    if (text.starts_with('+')) text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (error == std::errc::result_out_of_range) {
        exponent =
            text.starts_with('-') ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
    }
    return point - first + static_cast<double>(exponent);
}

/// What the digits mean that are beyond the range: too small to tell from zero, or too large.
template <class Floating>
Floating beyondRange(std::string_view digits) {
    const bool isNegative = digits.starts_with('-');
    if (isNegative) digits.remove_prefix(1);
    const Floating magnitude = powerOfTen(digits) < 0 ? 0 : std::numeric_limits<Floating>::infinity();
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
