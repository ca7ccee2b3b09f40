#pragma once

#include <Foundation/NSObject.h>
#include <Foundation/Values.h>

#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace flarebox {

namespace detail {
class NumberFormat;
}

enum NSNumberFormatterStyle : int {
    NSNumberFormatterNoStyle = 0,       ///< plain digits, no grouping
    NSNumberFormatterDecimalStyle = 1,  ///< the locale's grouping and decimal separators
};

/// Reads and writes numbers the way a locale does. Any thread; one formatter may be shared.
class NSNumberFormatter : public NSObject {
    FLAREBOX_CLASS(NSNumberFormatter)
public:
    NSNumberFormatter();
    ~NSNumberFormatter() override;

    void setNumberStyle(NSNumberFormatterStyle style);
    /// Whether fractions are read and written; true until set.
    void setAllowsFloats(bool allowsFloats);
    /// An identifier such as "de_DE"; empty means the process's locale, as it does until set.
    void setLocale(std::string_view identifier);

    /// The number that the whole text stands for: signed when it fits into 64 bits, else unsigned when it fits, else
    /// floating. Absent for anything else.
    NSNumber numberFromString(const NSString& text) const;
    /// Absent for an absent number.
    NSString stringFromNumber(const NSNumber& number) const;

private:
    /// With the lock held.
    const detail::NumberFormat& format() const;

    mutable std::mutex mutex_;
    mutable std::unique_ptr<detail::NumberFormat> format_;
    NSNumberFormatterStyle style_ = NSNumberFormatterNoStyle;
    bool allowsFloats_ = true;
    std::string locale_;
};

}  // namespace flarebox
