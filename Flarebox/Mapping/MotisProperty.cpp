#include <Flarebox/Mapping/MotisProperty.h>

#include <algorithm>
#include <charconv>

namespace flarebox::detail {

namespace {

/// Leading non-negative integer after blanks and a plus sign, saturated; 0 for a negative one or none.
std::uint64_t leadingUnsigned(std::string_view text) noexcept {
    const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string_view::npos) return 0;
    text.remove_prefix(start);
    if (text.starts_with('+')) text.remove_prefix(1);
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc::result_out_of_range ? std::numeric_limits<std::uint64_t>::max() : number;
}

}  // namespace

std::string objectTypeAttribute(std::string_view className) {
    return std::string("T@\"").append(className).append("\"");
}

std::int64_t signedFromValue(const Value& value, std::int64_t lowest, std::int64_t highest) noexcept {
    if (value.kind() == Value::Kind::Number) return std::clamp(value.as<NSNumber>().integerValue(), lowest, highest);
    return std::clamp(value.as<NSString>().integerValue(), lowest, highest);
}

std::uint64_t unsignedFromValue(const Value& value, std::uint64_t highest) noexcept {
    if (value.kind() == Value::Kind::Number) return std::min(value.as<NSNumber>().unsignedIntegerValue(), highest);
    return std::min(leadingUnsigned(value.as<NSString>().text()), highest);
}

double floatingFromValue(const Value& value) noexcept {
    if (value.kind() == Value::Kind::Number) return value.as<NSNumber>().doubleValue();
    return value.as<NSString>().doubleValue();
}

bool boolFromValue(const Value& value) noexcept {
    if (value.kind() == Value::Kind::Number) return value.as<NSNumber>().boolValue();
    return value.as<NSString>().doubleValue() != 0;
}

}  // namespace flarebox::detail
