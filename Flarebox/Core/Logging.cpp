#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Core/Logging.h>

#include <algorithm>
#include <cstdio>
#include <limits>

namespace flarebox {
namespace {

constexpr int longestField = 512;

/// One conversion of a format: "%-8.3lld" and the like.
struct Conversion {
    std::string flags;
    int width = -1;
    int precision = -1;
    std::string_view size;  ///< "hh", "ll" and so on
    char letter = 0;
    std::size_t length = 0;  ///< bytes in the format, the per cent sign included; 0 when it is no conversion
};

int readNumber(std::string_view text, std::size_t& at) {
    if (at >= text.size() || text[at] < '0' || text[at] > '9') return -1;
    int number = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        number = std::min(number * 10 + (text[at] - '0'), longestField);
    }
    return number;
}

/// Reads the conversion that the text, which starts with a per cent sign, begins with.
Conversion readConversion(std::string_view text) {
    Conversion conversion;
    std::size_t at = 1;
    while (at < text.size() && std::string_view("-+ #0").find(text[at]) != std::string_view::npos) {
        if (conversion.flags.size() < 5) conversion.flags += text[at];
        ++at;
    }
    conversion.width = readNumber(text, at);
    if (at < text.size() && text[at] == '.') {
        ++at;
        conversion.precision = std::max(readNumber(text, at), 0);
    }
    const std::size_t sizeStart = at;
    while (at < text.size() && std::string_view("hlLqjzt").find(text[at]) != std::string_view::npos) ++at;
    conversion.size = text.substr(sizeStart, at - sizeStart);
    if (at >= text.size() || std::string_view("@%diuxXocsfFeEgGaAp").find(text[at]) == std::string_view::npos)
        return conversion;
    conversion.letter = text[at];
    conversion.length = at + 1;
    return conversion;
}

template <class T>
std::string print(const Conversion& conversion, std::string_view lengthModifier, char letter, T value) {
    std::string format = "%" + conversion.flags;
    if (conversion.width >= 0) format += std::to_string(conversion.width);
    if (conversion.precision >= 0) format += "." + std::to_string(conversion.precision);
    format += lengthModifier;
    format += letter;
    // The widest result: 309 digits of a double before the point, and the bounded precision after it.
    std::array<char, 400 + 2 * longestField> buffer;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = std::snprintf(buffer.data(), buffer.size(), format.c_str(), value);
#pragma GCC diagnostic pop
    return {buffer.data(), static_cast<std::size_t>(std::clamp(length, 0, static_cast<int>(buffer.size()) - 1))};
}

std::string padded(const Conversion& conversion, std::string text, bool cut) {
    if (cut && conversion.precision >= 0)
        text.resize(std::min(text.size(), static_cast<std::size_t>(conversion.precision)));
    if (conversion.width < 0 || text.size() >= static_cast<std::size_t>(conversion.width)) return text;
    const std::string blanks(static_cast<std::size_t>(conversion.width) - text.size(), ' ');
    return conversion.flags.find('-') != std::string::npos ? text + blanks : blanks + text;
}

std::string character(std::int64_t code) {
    if (code > 0 && code < 128) return {static_cast<char>(code)};
    return "\xEF\xBF\xBD";  // the replacement character
}

/// The number as an argument of the size that the conversion names. What needs 64 bits keeps them where no size is
/// named.
std::int64_t narrowedSigned(const Conversion& conversion, std::int64_t number) {
    if (conversion.size == "hh") return static_cast<std::int8_t>(number);
    if (conversion.size == "h") return static_cast<std::int16_t>(number);
    return number;
}

std::uint64_t narrowedUnsigned(const Conversion& conversion, const NSNumber& number) {
    if (number.isUnsigned() && conversion.size.empty()) return number.unsignedIntegerValue();
    const auto bits =
        number.isUnsigned() ? number.unsignedIntegerValue() : static_cast<std::uint64_t>(number.integerValue());
    if (conversion.size == "hh") return static_cast<std::uint8_t>(bits);
    if (conversion.size == "h") return static_cast<std::uint16_t>(bits);
    const auto asSigned = static_cast<std::int64_t>(bits);
    const bool isNegativeInt = asSigned < 0 && asSigned >= std::numeric_limits<std::int32_t>::min();
    return conversion.size.empty() && isNegativeInt ? static_cast<std::uint32_t>(bits) : bits;
}

std::string convert(const Conversion& conversion, const Value& argument) {
    const auto number = argument.as<NSNumber>();
    if (!number) return padded(conversion, argument.description(), conversion.letter == 's');
    switch (conversion.letter) {
        case 'd':
        case 'i':
            if (number.isUnsigned())
                return print(conversion, "ll", 'u', static_cast<unsigned long long>(number.unsignedIntegerValue()));
            return print(conversion, "ll", 'd',
                         static_cast<long long>(narrowedSigned(conversion, number.integerValue())));
        case 'u':
        case 'x':
        case 'X':
        case 'o':
            return print(conversion, "ll", conversion.letter,
                         static_cast<unsigned long long>(narrowedUnsigned(conversion, number)));
        case 'c':
            return padded(conversion, character(number.integerValue()), false);
        case 'f':
        case 'F':
        case 'e':
        case 'E':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            return print(conversion, "", conversion.letter, number.doubleValue());
        default:
            return padded(conversion, argument.description(), conversion.letter == 's');
    }
}

std::string_view title(LogLevel level) {
    switch (level) {
        case LogLevelError:
            return "KestrinSDK Error";
        case LogLevelWarning:
            return "KestrinSDK Warning";
        case LogLevelInfo:
            break;
    }
    return "KestrinSDK Info";
}

void writeLog(LogLevel level, std::string_view title, std::string_view format, std::span<const Value> arguments) {
    if (format.ends_with('\n')) format.remove_suffix(1);
    std::string message = formatLog(format, arguments);
    // Texts of a service must not steer the terminal that shows the log.
    const auto isControl = [](unsigned char c) { return (c < ' ' && c != '\n' && c != '\t') || c == 127; };
    std::ranges::replace_if(message, isControl, '?');
    LogSink::write(level, std::string(title) + ": " + message);
}

}  // namespace

bool isLogLevelEnabel(std::int64_t level) {
    const FlareboxConfig& config = FlareboxConfig::defaultConfig();
    if (!config.enableLogging()) return false;
    switch (config.logLevel()) {
        case LogLevelInfo:
            return true;
        case LogLevelWarning:
            return level == LogLevelWarning || level == LogLevelError;
        case LogLevelError:
            return level == LogLevelError;
        default:
            return false;
    }
}

std::string formatLog(std::string_view format, std::span<const Value> arguments) {
    std::string message;
    std::size_t next = 0;
    while (!format.empty()) {
        const std::size_t percent = format.find('%');
        message += format.substr(0, percent);
        if (percent == std::string_view::npos) break;
        format.remove_prefix(percent);
        const Conversion conversion = readConversion(format);
        if (conversion.letter == '%') {
            message += '%';
        } else if (conversion.length == 0) {
            message += '%';
        } else if (next >= arguments.size()) {
            message += format.substr(0, conversion.length);
        } else {
            message += convert(conversion, arguments[next++]);
        }
        format.remove_prefix(std::max<std::size_t>(conversion.length, 1));
    }
    return message;
}

void printLog(std::string_view title, std::string_view format, std::span<const Value> arguments) {
    writeLog(LogLevelInfo, title, format, arguments);
}

void detail::logAt(LogLevel level, std::string_view format, std::span<const Value> arguments) {
    writeLog(level, title(level), format, arguments);
}

}  // namespace flarebox
