#include <Foundation/Clock.h>
#include <Foundation/Storage.h>
#include <Foundation/Values.h>

namespace flarebox {

NSDate NSDate::dateWithTimeIntervalSince1970(double seconds) noexcept {
    return NSDate(detail::ValueAccess::date(seconds), Checked{});
}

NSDate NSDate::date() {
    return dateWithTimeIntervalSince1970(Clock::current().timeSince1970());
}

double NSDate::timeIntervalSince1970() const noexcept {
    return *this ? detail::ValueAccess::seconds(*this) : 0;
}

double NSDate::timeIntervalSinceDate(const NSDate& earlier) const noexcept {
    return timeIntervalSince1970() - earlier.timeIntervalSince1970();
}

}  // namespace flarebox
