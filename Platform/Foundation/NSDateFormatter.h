#pragma once

#include <Foundation/NSObject.h>
#include <Foundation/Values.h>

#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace flarebox {

namespace detail {
class DateFormat;
}

/// Reads and writes dates by a pattern of Unicode date fields, such as "yyyy-MM-dd'T'HH:mm:ssXXX". Any thread; one
/// formatter may be shared.
class NSDateFormatter : public NSObject {
    FLAREBOX_CLASS(NSDateFormatter)
public:
    NSDateFormatter();
    ~NSDateFormatter() override;

    void setDateFormat(std::string_view pattern);
    std::string dateFormat() const;
    /// An identifier such as "en_US_POSIX"; empty means the process's locale, as it does until set.
    void setLocale(std::string_view identifier);
    /// A name such as "Europe/Berlin", "UTC" or "GMT+02:00"; empty means the process's time zone, as it does until set.
    /// False, with nothing changed, for an unknown name.
    bool setTimeZone(std::string_view name);

    /// Absent unless the whole text follows the pattern and is a date of the calendar. What the pattern leaves out is
    /// taken from 1970-01-01 00:00:00.
    NSDate dateFromString(const NSString& text) const;
    /// Absent for an absent date.
    NSString stringFromDate(const NSDate& date) const;

private:
    /// With the lock held.
    const detail::DateFormat& format() const;

    mutable std::mutex mutex_;
    mutable std::unique_ptr<detail::DateFormat> format_;
    std::string pattern_;
    std::string locale_;
    std::string timeZone_;
};

}  // namespace flarebox
