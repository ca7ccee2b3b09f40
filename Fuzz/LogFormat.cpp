// The log's formatter: any format with any arguments, and single conversions against the C library.

#include <Fuzz/Support/ByteSource.h>

#include <Flarebox/Core/Logging.h>

#include <cstdio>
#include <string>
#include <vector>

namespace flarebox::fuzz {
namespace {

void checkAnyFormat(ByteSource& source) {
    std::vector<Value> arguments;
    std::size_t argumentLength = 0;
    for (std::size_t count = source.below(5); count > 0; --count) {
        arguments.push_back(source.flag() ? makeValue(source, 3, false) : Value());
        argumentLength += arguments.back().description().size();
    }
    const std::string_view format = text(source.rest());
    const std::string message = formatLog(format, arguments);
    // The widest number there is, and the padding and digits that can be asked for.
    constexpr std::size_t longestNumber = 310 + 2 * 512 + 16;
    check(message.size() <= format.size() + argumentLength + arguments.size() * longestNumber, "a message is bounded");
    if (format.find('%') == std::string_view::npos) check(message == format, "a format without conversions stays");
    if (arguments.empty())
        check(formatLog(message, arguments).size() <= message.size(), "nothing is left to be replaced");
}

template <class T>
std::string printed(const std::string& conversion, T value) {
    char buffer[4096];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = std::snprintf(buffer, sizeof buffer, conversion.c_str(), value);
#pragma GCC diagnostic pop
    return {buffer, static_cast<std::size_t>(length)};
}

void checkOneConversion(ByteSource& source) {
    static constexpr const char* flags[] = {"", "-", "+", "0", " ", "#", "-+", "+0", " #0"};
    std::string conversion = std::string("%") + source.pick(flags);
    if (source.flag()) conversion += std::to_string(1 + source.below(300));
    if (source.flag()) conversion += "." + std::to_string(source.below(300));
    const auto expect = [&](const Value& argument, const std::string& expected) {
        const Value arguments[] = {argument};
        check(formatLog("<" + conversion + ">", arguments) == "<" + expected + ">", "numbers are printed as in C");
    };
    if (source.flag()) {
        static constexpr char letters[] = {'f', 'F', 'e', 'E', 'g', 'G', 'a', 'A'};
        conversion += source.pick(letters);
        const auto number = source.word<double>();
        return expect(number, printed(conversion, number));
    }
    static constexpr char letters[] = {'d', 'i', 'u', 'x', 'X', 'o'};
    const char letter = source.pick(letters);
    conversion += std::string("ll") + letter;
    const auto number = source.word<std::int64_t>();
    const bool isSigned = letter == 'd' || letter == 'i';
    if (isSigned) return expect(number, printed(conversion, static_cast<long long>(number)));
    expect(static_cast<std::uint64_t>(number), printed(conversion, static_cast<unsigned long long>(number)));
}

}  // namespace

FLAREBOX_FUZZER(LogFormat) {
    ByteSource source(input);
    if (source.flag())
        checkAnyFormat(source);
    else
        checkOneConversion(source);
}

}  // namespace flarebox::fuzz
