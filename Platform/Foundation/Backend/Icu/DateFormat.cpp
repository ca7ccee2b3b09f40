#include <Foundation/Backend/Icu/DateFormat.h>
#include <Foundation/Backend/Icu/Text.h>

#include <unicode/ucal.h>
#include <unicode/udat.h>
#include <cmath>

namespace flarebox::detail {

namespace {

struct Close {
    void operator()(UDateFormat* format) const { udat_close(format); }
};

std::int32_t length(std::u16string_view text) {
    return static_cast<std::int32_t>(text.size());
}

}  // namespace

struct DateFormat::Library {
    std::unique_ptr<UDateFormat, Close> format;
};

DateFormat::DateFormat(const std::string& pattern, const std::string& locale, const std::string& timeZone)
    : library_(std::make_unique<Library>()) {
    auto patternUnits = toUTF16(pattern);
    auto zoneUnits = toUTF16(timeZone);
    if (!patternUnits || !zoneUnits) return;
    UErrorCode status = U_ZERO_ERROR;
    library_->format.reset(udat_open(UDAT_PATTERN, UDAT_PATTERN, locale.c_str(), zoneUnits->data(), length(*zoneUnits),
                                     patternUnits->data(), length(*patternUnits), &status));
    if (U_FAILURE(status)) library_->format.reset();
    if (!library_->format) return;
    udat_setLenient(library_->format.get(), false);
    // "Lenient" above is about numbers out of range; these are about blanks, missing points and other names of months.
    for (auto attribute : {UDAT_PARSE_ALLOW_WHITESPACE, UDAT_PARSE_ALLOW_NUMERIC, UDAT_PARSE_PARTIAL_LITERAL_MATCH}) {
        udat_setBooleanAttribute(library_->format.get(), attribute, false, &status);
    }
}

DateFormat::~DateFormat() = default;

std::optional<double> DateFormat::parse(std::string_view text) const {
    auto units = toUTF16(text);
    if (!library_->format || !units || units->empty()) return std::nullopt;
    std::int32_t position = 0;
    UErrorCode status = U_ZERO_ERROR;
    UDate milliseconds = udat_parse(library_->format.get(), units->data(), length(*units), &position, &status);
    if (U_FAILURE(status) || position != length(*units)) return std::nullopt;
    return milliseconds / 1000;
}

std::string DateFormat::format(double secondsSince1970) const {
    if (!library_->format || !std::isfinite(secondsSince1970)) return {};
    return toUTF8(collect([&](char16_t* buffer, std::int32_t capacity, UErrorCode& status) {
        return udat_format(library_->format.get(), secondsSince1970 * 1000, buffer, capacity, nullptr, &status);
    }));
}

bool isTimeZone(const std::string& name) {
    auto units = toUTF16(name);
    if (!units || units->empty()) return false;
    return !collect([&](char16_t* buffer, std::int32_t capacity, UErrorCode& status) {
                return ucal_getCanonicalTimeZoneID(units->data(), length(*units), buffer, capacity, nullptr, &status);
            }).empty();
}

std::string currentTimeZone() {
    return toUTF8(collect([](char16_t* buffer, std::int32_t capacity, UErrorCode& status) {
        return ucal_getDefaultTimeZone(buffer, capacity, &status);
    }));
}

}  // namespace flarebox::detail
