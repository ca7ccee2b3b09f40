#include <Foundation/Backend/Icu/NumberFormat.h>
#include <Foundation/Backend/Icu/Text.h>

#include <unicode/unum.h>
#include <cstdlib>

namespace flarebox::detail {

namespace {

struct Close {
    void operator()(UNumberFormat* format) const { unum_close(format); }
};

/// The library writes whole numbers of twenty digits as "1.8446744073709551615E+19"; this gives the digits back.
/// A number that would be absurdly long stays as it is.
std::string withoutExponent(const std::string& decimal) {
    constexpr int longestExponent = 400;
    auto mark = decimal.find('E');
    if (mark == std::string::npos) return decimal;
    std::string_view sign = decimal.starts_with('-') ? "-" : "";
    std::string digits = decimal.substr(sign.size(), mark - sign.size());
    auto point = digits.find('.');
    int decimals = point == std::string::npos ? 0 : static_cast<int>(digits.size() - point - 1);
    if (point != std::string::npos) digits.erase(point, 1);
    int exponent = std::atoi(decimal.c_str() + mark + 1);
    if (exponent < decimals || exponent > longestExponent) return decimal;
    digits.append(static_cast<std::size_t>(exponent - decimals), '0');
    return std::string(sign) + digits;
}

bool hasPowerOfTen(std::string_view text) {
    return text.find_first_of("eE") != std::string_view::npos;
}

}  // namespace

struct NumberFormat::Library {
    std::unique_ptr<UNumberFormat, Close> format;
    bool allowsFloats;
};

NumberFormat::NumberFormat(const std::string& locale, bool groupsDigits, bool allowsFloats)
    : library_(std::make_unique<Library>()) {
    library_->allowsFloats = allowsFloats;
    UErrorCode status = U_ZERO_ERROR;
    library_->format.reset(unum_open(UNUM_DECIMAL, nullptr, 0, locale.c_str(), nullptr, &status));
    if (U_FAILURE(status)) library_->format.reset();
    if (!library_->format) return;
    unum_setAttribute(library_->format.get(), UNUM_GROUPING_USED, groupsDigits);
    unum_setAttribute(library_->format.get(), UNUM_PARSE_INT_ONLY, !allowsFloats);
    if (!allowsFloats) unum_setAttribute(library_->format.get(), UNUM_MAX_FRACTION_DIGITS, 0);
}

NumberFormat::~NumberFormat() = default;

std::optional<std::string> NumberFormat::parse(std::string_view text) const {
    auto units = toUTF16(text);
    if (!library_->format || !units || units->empty()) return std::nullopt;
    // Reading integers only, the library still takes "1E5" and "1E-2".
    if (!library_->allowsFloats && hasPowerOfTen(text)) return std::nullopt;
    const auto length = static_cast<std::int32_t>(units->size());
    std::string decimal(units->size() + 64, '\0');
    std::int32_t position = 0;
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t written = unum_parseDecimal(library_->format.get(), units->data(), length, &position, decimal.data(),
                                             static_cast<std::int32_t>(decimal.size()), &status);
    // Reading stops without an error at what it does not know.
    if (U_FAILURE(status) || position != length) return std::nullopt;
    decimal.resize(static_cast<std::size_t>(written));
    decimal = withoutExponent(decimal);
    if (!library_->allowsFloats && decimal.find('.') != std::string::npos) return std::nullopt;
    return decimal;
}

std::string NumberFormat::format(std::string_view decimal) const {
    if (!library_->format) return {};
    return toUTF8(collect([&](char16_t* buffer, std::int32_t capacity, UErrorCode& status) {
        return unum_formatDecimal(library_->format.get(), decimal.data(), static_cast<std::int32_t>(decimal.size()),
                                  buffer, capacity, nullptr, &status);
    }));
}

}  // namespace flarebox::detail
