#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace flarebox::detail {

/// A pattern of Unicode date fields ("yyyy-MM-dd") in a locale and a time zone. Not for two threads at once.
class DateFormat {
public:
    /// `timeZone` is a name such as "Europe/Berlin" or "GMT+02:00".
    DateFormat(const std::string& pattern, const std::string& locale, const std::string& timeZone);
    ~DateFormat();
    DateFormat(const DateFormat&) = delete;
    DateFormat& operator=(const DateFormat&) = delete;

    /// Seconds since 1970 of the moment that the whole text stands for, to the letter of the pattern; none otherwise.
    std::optional<double> parse(std::string_view text) const;
    std::string format(double secondsSince1970) const;

private:
    struct Library;
    std::unique_ptr<Library> library_;
};

/// Whether the library knows a time zone of that name. Any thread.
bool isTimeZone(const std::string& name);
/// The process's time zone. Any thread.
std::string currentTimeZone();

}  // namespace flarebox::detail
