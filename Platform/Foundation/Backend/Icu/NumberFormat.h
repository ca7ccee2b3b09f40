#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace flarebox::detail {

/// A locale's way of writing numbers. Not for two threads at once.
class NumberFormat {
public:
    /// `locale` is an identifier such as "de_DE".
    NumberFormat(const std::string& locale, bool groupsDigits, bool allowsFloats);
    ~NumberFormat();
    NumberFormat(const NumberFormat&) = delete;
    NumberFormat& operator=(const NumberFormat&) = delete;

    /// The number that the whole text stands for, as plain decimal text with every digit ("-12.5", "1E+300"); none when
    /// any part of the text is no part of a number.
    std::optional<std::string> parse(std::string_view text) const;
    /// `decimal` is plain decimal text. Empty when it is no number.
    std::string format(std::string_view decimal) const;

private:
    struct Library;
    std::unique_ptr<Library> library_;
};

}  // namespace flarebox::detail
