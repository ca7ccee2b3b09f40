#include <Foundation/NSDateFormatter.h>
#include <Foundation/NSNumberFormatter.h>

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <thread>

namespace flarebox {
namespace {

TEST(NumberFormatter, ReadsWholeTextsOnly) {
    struct Case {
        const char* locale;
        bool allowsFloats;
        std::string text;
        Value expected;
    };
    const Case cases[] = {
        {"en_US", false, "12", 12},
        {"en_US", false, "0012", 12},
        {"en_US", false, "-7", -7},
        {"en_US", false, "1,234", 1234},
        {"en_US", false, "18446744073709551615", std::numeric_limits<std::uint64_t>::max()},
        {"en_US", false, "9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"en_US", false, "-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"en_US", false, "18446744073709551616", 18446744073709551616.0},
        {"en_US", false, "12.5", Value()},
        {"en_US", false, "12a", Value()},
        {"en_US", false, "a12", Value()},
        {"en_US", false, "", Value()},
        {"en_US", false, " ", Value()},
        {"en_US", false, "12 ", Value()},
        {"en_US", false, "1E3", Value()},
        {"en_US", false, "1E-2", Value()},
        {"en_US", false, "1.5E1", Value()},
        {"en_US", true, "1E30", 1e30},
        {"en_US", false, "1e300", Value()},
        {"en_US", true, "-25E-1", -2.5},
        {"en_US", false, "NaN", Value()},
        {"en_US", false, "∞", Value()},
        {"en_US", false, "\xFF", Value()},
        {"en_US", false, std::string("1\0", 2), Value()},
        {"en_US", false, std::string(2000000, '1'), Value()},
        {"en_US", true, "12.5", 12.5},
        {"en_US", true, "1,234.25", 1234.25},
        {"en_US", true, "12.5.1", Value()},
        {"de_DE", true, "12,5", 12.5},
        {"de_DE", true, "1.234,25", 1234.25},
        {"de_DE", false, "1.234", 1234},
        {"de_DE", false, "12,5", Value()},
    };
    for (const Case& each : cases) {
        NSNumberFormatter formatter;
        formatter.setNumberStyle(NSNumberFormatterDecimalStyle);
        formatter.setAllowsFloats(each.allowsFloats);
        formatter.setLocale(each.locale);
        NSNumber number = formatter.numberFromString(each.text);
        EXPECT_EQ(number, each.expected) << each.text.substr(0, 40) << " gave " << number.description();
        EXPECT_EQ(number.isFloating(), each.expected.as<NSNumber>().isFloating()) << each.text.substr(0, 40);
    }
    EXPECT_FALSE(NSNumberFormatter().numberFromString({}));
}

TEST(NumberFormatter, WritesTheLocalesWay) {
    struct Case {
        const char* locale;
        NSNumberFormatterStyle style;
        NSNumber number;
        const char* expected;
    };
    const Case cases[] = {
        {"en_US", NSNumberFormatterDecimalStyle, NSNumber(1234567.25), "1,234,567.25"},
        {"de_DE", NSNumberFormatterDecimalStyle, NSNumber(1234567.25), "1.234.567,25"},
        {"en_US", NSNumberFormatterNoStyle, NSNumber(1234567), "1234567"},
        {"en_US", NSNumberFormatterDecimalStyle, NSNumber(std::numeric_limits<std::uint64_t>::max()),
         "18,446,744,073,709,551,615"},
    };
    for (const Case& each : cases) {
        NSNumberFormatter formatter;
        formatter.setNumberStyle(each.style);
        formatter.setLocale(each.locale);
        EXPECT_EQ(formatter.stringFromNumber(each.number), each.expected);
    }
    EXPECT_FALSE(NSNumberFormatter().stringFromNumber({}));
}

TEST(DateFormatter, FollowsThePatternToTheLetter) {
    struct Case {
        const char *pattern, *locale, *zone, *text;
        Value expected;
    };
    auto date = [](double seconds) { return Value(NSDate::dateWithTimeIntervalSince1970(seconds)); };
    const Case cases[] = {
        {"yyyy-MM-dd", "en_US_POSIX", "UTC", "2026-01-01", date(1767225600)},
        {"yyyy-MM-dd", "en_US_POSIX", "Europe/Berlin", "2026-01-01", date(1767225600 - 3600)},
        {"yyyy-MM-dd", "en_US_POSIX", "GMT+02:00", "2026-01-01", date(1767225600 - 7200)},
        {"yyyy-MM-dd'T'HH:mm:ss.SSSXXX", "en_US_POSIX", "UTC", "2026-01-01T01:00:00.250+01:00", date(1767225600.25)},
        {"d. MMMM yyyy", "de_DE", "UTC", "1. Januar 2026", date(1767225600)},
        {"yyyy-MM-dd", "en_US_POSIX", "UTC", "2026-02-30", Value()},
        {"yyyy-MM-dd", "en_US_POSIX", "UTC", "2026-13-01", Value()},
        {"yyyy-MM-dd", "en_US_POSIX", "UTC", "2026-01-01x", Value()},
        {"yyyy-MM-dd", "en_US_POSIX", "UTC", "2026-01-01 ", Value()},
        {"yyyy-MM-dd", "en_US_POSIX", "UTC", "2026/01/01", Value()},
        {"yyyy-MM-dd HH:mm", "en_US_POSIX", "UTC", "2026-01-01", Value()},
        {"yyyy-MM-dd", "en_US_POSIX", "UTC", "", Value()},
        {"yyyy-MM-dd", "en_US_POSIX", "UTC", "\xFF", Value()},
        {"HH:mm", "en_US_POSIX", "UTC", "01:30", date(5400)},
        {"qqqqqqqq bad '", "en_US_POSIX", "UTC", "1", Value()},
    };
    for (const Case& each : cases) {
        NSDateFormatter formatter;
        formatter.setDateFormat(each.pattern);
        formatter.setLocale(each.locale);
        ASSERT_TRUE(formatter.setTimeZone(each.zone));
        NSDate result = formatter.dateFromString(each.text);
        EXPECT_EQ(result, each.expected) << each.text << " gave " << result.description();
    }
}

TEST(DateFormatter, WritesDatesAndRefusesUnknownZones) {
    NSDateFormatter formatter;
    formatter.setDateFormat("yyyy-MM-dd'T'HH:mm:ssXXX");
    formatter.setLocale("en_US_POSIX");
    ASSERT_TRUE(formatter.setTimeZone("Europe/Berlin"));
    for (const char* unknown : {"Middle/Earth", "\xFF", "UTC+"})
        EXPECT_FALSE(formatter.setTimeZone(unknown)) << unknown;
    EXPECT_EQ(formatter.stringFromDate(NSDate::dateWithTimeIntervalSince1970(1767225600)), "2026-01-01T01:00:00+01:00");
    EXPECT_FALSE(formatter.stringFromDate({}));
    EXPECT_TRUE(formatter.setTimeZone(""));
    EXPECT_EQ(formatter.dateFormat(), "yyyy-MM-dd'T'HH:mm:ssXXX");
}

TEST(Formatters, AreSharedByThreads) {
    NSNumberFormatter numbers;
    numbers.setNumberStyle(NSNumberFormatterDecimalStyle);
    numbers.setLocale("en_US");
    NSDateFormatter dates;
    dates.setDateFormat("yyyy-MM-dd");
    dates.setLocale("en_US_POSIX");
    dates.setTimeZone("UTC");
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            for (int count = 0; count < 200; ++count) {
                int number = thread * 1000 + count;
                if (numbers.numberFromString(NSString(std::to_string(number))) != Value(number)) ++wrong;
                NSString day("2026-01-0" + std::to_string(1 + thread));
                if (dates.stringFromDate(dates.dateFromString(day)) != day) ++wrong;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace flarebox
