#include <Foundation/Backend/Icu/NumberFormat.h>
#include <Foundation/Backend/Icu/Unicode.h>
#include <Foundation/NSNumberFormatter.h>

#include <charconv>
#include <cmath>
#include <optional>

namespace flarebox {

namespace {

template <class Number>
std::optional<Number> whole(std::string_view text) {
    Number number{};
    auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

NSNumber numberFromDecimal(std::string_view decimal) {
    if (auto number = whole<std::int64_t>(decimal)) return NSNumber(*number);
    if (auto number = whole<std::uint64_t>(decimal)) return NSNumber(*number);
    auto number = whole<double>(decimal);
    if (!number || !std::isfinite(*number)) return {};
    return NSNumber(*number);
}

}  // namespace

const ClassInfo& NSNumberFormatter::staticClass() {
    static const ClassInfo info("NSNumberFormatter", &NSObject::staticClass(), createObject<NSNumberFormatter>);
    return info;
}

NSNumberFormatter::NSNumberFormatter() = default;
NSNumberFormatter::~NSNumberFormatter() = default;

void NSNumberFormatter::setNumberStyle(NSNumberFormatterStyle style) {
    std::lock_guard lock(mutex_);
    style_ = style;
    format_.reset();
}

void NSNumberFormatter::setAllowsFloats(bool allowsFloats) {
    std::lock_guard lock(mutex_);
    allowsFloats_ = allowsFloats;
    format_.reset();
}

void NSNumberFormatter::setLocale(std::string_view identifier) {
    std::lock_guard lock(mutex_);
    locale_ = identifier;
    format_.reset();
}

const detail::NumberFormat& NSNumberFormatter::format() const {
    if (!format_) {
        std::string locale = locale_.empty() ? detail::currentLocaleIdentifier() : locale_;
        format_ =
            std::make_unique<detail::NumberFormat>(locale, style_ == NSNumberFormatterDecimalStyle, allowsFloats_);
    }
    return *format_;
}

NSNumber NSNumberFormatter::numberFromString(const NSString& text) const {
    std::lock_guard lock(mutex_);
    auto decimal = format().parse(text.text());
    return decimal ? numberFromDecimal(*decimal) : NSNumber();
}

NSString NSNumberFormatter::stringFromNumber(const NSNumber& number) const {
    if (!number) return {};
    std::lock_guard lock(mutex_);
    return NSString(format().format(number.stringValue()));
}

}  // namespace flarebox
