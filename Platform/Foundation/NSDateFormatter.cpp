#include <Foundation/Backend/Icu/DateFormat.h>
#include <Foundation/Backend/Icu/Unicode.h>
#include <Foundation/NSDateFormatter.h>

namespace flarebox {

const ClassInfo& NSDateFormatter::staticClass() {
    static const ClassInfo info("NSDateFormatter", &NSObject::staticClass(), createObject<NSDateFormatter>);
    return info;
}

NSDateFormatter::NSDateFormatter() = default;
NSDateFormatter::~NSDateFormatter() = default;

void NSDateFormatter::setDateFormat(std::string_view pattern) {
    std::lock_guard lock(mutex_);
    pattern_ = pattern;
    format_.reset();
}

std::string NSDateFormatter::dateFormat() const {
    std::lock_guard lock(mutex_);
    return pattern_;
}

void NSDateFormatter::setLocale(std::string_view identifier) {
    std::lock_guard lock(mutex_);
    locale_ = identifier;
    format_.reset();
}

bool NSDateFormatter::setTimeZone(std::string_view name) {
    if (!name.empty() && !detail::isTimeZone(std::string(name))) return false;
    std::lock_guard lock(mutex_);
    timeZone_ = name;
    format_.reset();
    return true;
}

const detail::DateFormat& NSDateFormatter::format() const {
    if (!format_) {
        format_ = std::make_unique<detail::DateFormat>(pattern_,
                                                       locale_.empty() ? detail::currentLocaleIdentifier() : locale_,
                                                       timeZone_.empty() ? detail::currentTimeZone() : timeZone_);
    }
    return *format_;
}

NSDate NSDateFormatter::dateFromString(const NSString& text) const {
    std::lock_guard lock(mutex_);
    auto seconds = format().parse(text.text());
    return seconds ? NSDate::dateWithTimeIntervalSince1970(*seconds) : NSDate();
}

NSString NSDateFormatter::stringFromDate(const NSDate& date) const {
    if (!date) return {};
    std::lock_guard lock(mutex_);
    return NSString(format().format(date.timeIntervalSince1970()));
}

}  // namespace flarebox
